#include "drivernames.h"

#include <algorithm>
#include <array>
#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/predicate.hpp>
#include <cctype>
#include <utility>

#include "pciinfo.h"

namespace Orvane {
namespace {

// Names of platform components: the same on every machine that has them, with or without a driver.
const std::string IntelGpio = "INTC-VOKTA_IALPSS2_GPIO2_MTL_0000-0000-0000-0000";
const std::string IntelEventFilter = "INTC-VOKTA_HIDEVENTFILTER_0000-0000-0000-0000";

bool IsIntelGpio(const PciDeviceRecord& device) {
  return device.vendor_id == "INTC" && (device.device_id == "105E" || device.device_id == "1083");
}

bool IsIntelEventFilter(const PciDeviceRecord& device) {
  static constexpr std::array<std::string_view, 12> deviceIds = {"1051", "1054", "1070", "1076", "1077", "1078",
                                                                 "107B", "10CB", "10CC", "10F1", "10F2", "110E"};
  return device.vendor_id == "INTC" &&
         std::find(deviceIds.begin(), deviceIds.end(), device.device_id) != deviceIds.end();
}

}  // namespace

std::string DriverBaseName(const std::string& name) {
  std::string lower = name;
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  for (const char* const extension : {".inf", ".sys"}) {
    const std::size_t position = lower.find(extension);
    if (position != std::string::npos) return name.substr(0, position);
  }
  return name;
}

std::string DeviceIdentity(const PciDeviceRecord& device) {
  return device.vendor_id + "-" + device.device_id + "-" + device.identity_part3 + "-" + device.identity_part4;
}

std::string DeviceRecordName(const PciDeviceRecord& device, const std::string& base) {
  if (IsIntelGpio(device)) return IntelGpio;
  if (IsIntelEventFilter(device)) return IntelEventFilter;
  if (base.empty()) return DeviceIdentity(device) + "_nodriver#";
  return base + "_" + DeviceIdentity(device);
}

std::string GetImageFileName(const char* configuredPath, const char* serviceName) {
  const std::string path = configuredPath != nullptr ? configuredPath : "";
  const std::string name = serviceName != nullptr ? serviceName : "";
  if (path.find("\\??\\") != std::string::npos) return path.substr(4);
  if (path.empty()) return name + ".sys";
  // Lower-cased with the process's global locale.
  const std::string lower = boost::algorithm::to_lower_copy(path);
  return lower.substr(lower.rfind('\\') + 1);
}

std::string FirstImagePlace(const std::string& path, const std::string& systemDirectory) {
  using boost::algorithm::starts_with;
  if (path.find(':') != std::string::npos) return path;
  for (const char* const prefix : {"\\system32", "system32", "\\System32", "System32", "\\SystemRoot\\"}) {
    // Everything after the last "32" of the whole path, wherever it is. Without a "32", npos + 2 wraps to 1.
    if (starts_with(path, prefix)) return systemDirectory + path.substr(path.rfind("32") + 2);
  }
  return systemDirectory + "\\drivers\\" + path;
}

std::string ImageRecordName(const std::string& path) {
  const std::string file = path.substr(path.rfind('\\') + 1);
  const std::size_t dot = file.find('.');
  return dot == std::string::npos ? file : file.substr(0, dot) + ".sys";
}

void SplitAtSemicolon(const std::string& text, std::string& before, std::string& after) {
  const std::size_t semicolon = text.find(';');
  if (semicolon == std::string::npos) {
    before = after = text;
    return;
  }
  std::string tail = text.substr(semicolon + 1);
  before = text.substr(0, semicolon);
  after = std::move(tail);
}

}  // namespace Orvane
