#include "pciinfo.h"

#include <windows.h>
// After windows.h.
#include <setupapi.h>

#include <algorithm>
#include <array>
#include <utility>

#include "deviceidentity.h"
#include "platform/handles.h"
#include "platform/logline.h"
#include "platform/platformtext.h"

namespace Orvane {
namespace {

/// One present device of a set.
class Device {
 public:
  Device(HDEVINFO set, SP_DEVINFO_DATA data) : m_set(set), m_data(data) {}

  /// If it cannot be read, empty with GetLastError() set.
  std::string InstanceId() {
    std::array<char, 1024> text{};
    if (!SetupDiGetDeviceInstanceIdA(m_set, &m_data, text.data(), static_cast<DWORD>(text.size()), nullptr)) return {};
    return BoundedText(text.data(), text.size());
  }

  /// The texts of a property; empty if the device has no such property.
  std::vector<std::string> Properties(DWORD property) {
    std::vector<std::string> texts;
    const std::vector<char> bytes = PropertyBytes(property);
    for (auto text = bytes.begin(); text != bytes.end() && *text != '\0';) {
      const auto end = std::find(text, bytes.end(), '\0');
      texts.emplace_back(text, end);
      text = end == bytes.end() ? end : end + 1;
    }
    return texts;
  }

  /// The (first) text of a property; empty if the device has no such property.
  std::string Property(DWORD property) {
    const std::vector<char> bytes = PropertyBytes(property);
    return BoundedText(bytes.data(), bytes.size());
  }

  /// The registry key that describes the installed driver package; empty if no driver is installed.
  RegKey DriverKey() {
    return RegKey(SetupDiOpenDevRegKey(m_set, &m_data, DICS_FLAG_GLOBAL, 0, DIREG_DRV, KEY_QUERY_VALUE));
  }

 private:
  std::vector<char> PropertyBytes(DWORD property) {
    // The size that the platform reports is only a hint: some platforms report too little for narrow text.
    std::vector<char> bytes(1024);
    DWORD size = 0;
    constexpr std::size_t largest = 1 << 20;
    while (!SetupDiGetDeviceRegistryPropertyA(m_set, &m_data, property, nullptr, reinterpret_cast<BYTE*>(bytes.data()),
                                              static_cast<DWORD>(bytes.size()), &size)) {
      if (GetLastError() != ERROR_INSUFFICIENT_BUFFER || bytes.size() >= largest) return {};
      bytes.assign(std::max<std::size_t>(bytes.size() * 4, std::min<std::size_t>(size, largest)), '\0');
    }
    bytes.resize(std::min<std::size_t>(size, bytes.size()));
    return bytes;
  }

  HDEVINFO m_set;
  SP_DEVINFO_DATA m_data;
};

/// A text value of a driver key; empty if there is no such value.
std::string KeyText(const RegKey& key, const char* name) {
  std::array<char, 1024> text{};
  DWORD size = static_cast<DWORD>(text.size());
  if (!key || RegQueryValueExA(key.get(), name, nullptr, nullptr, reinterpret_cast<BYTE*>(text.data()), &size) !=
                  ERROR_SUCCESS) {
    return {};
  }
  return BoundedText(text.data(), text.size());
}

/// "C:\windows\inf\"; empty if the system does not report it.
std::string InfDirectory() {
  std::array<char, MAX_PATH> windows{};
  const UINT length = GetSystemWindowsDirectoryA(windows.data(), static_cast<UINT>(windows.size()));
  if (length == 0 || length >= windows.size()) return {};
  return std::string(windows.data(), length) + "\\inf\\";
}

/// The identity from the most specific identifier that has a known form. If no identifier has one, the vendor is
/// everything in `instanceId` between its first two "\".
DeviceIdentifiers Identify(const std::vector<std::string>& hardwareIds, const std::string& instanceId) {
  for (const std::string& id : hardwareIds) {
    if (const auto identifiers = ParseIdentifier(id)) return *identifiers;
  }
  if (const auto identifiers = ParseIdentifier(instanceId)) return *identifiers;
  DeviceIdentifiers identifiers;
  const std::string device = instanceId.substr(instanceId.find('\\') + 1);
  identifiers.vendor = device.substr(0, device.find('\\'));
  identifiers.device = "0000";
  return identifiers;
}

PciDeviceRecord Describe(Device& device, const std::string& instanceId, const std::string& infDirectory) {
  PciDeviceRecord record;
  record.list = device.Properties(SPDRP_HARDWAREID);
  DeviceIdentifiers identifiers = Identify(record.list, instanceId);
  record.vendor_id = std::move(identifiers.vendor);
  record.device_id = std::move(identifiers.device);
  record.identity_part3 = std::move(identifiers.part3);
  record.identity_part4 = std::move(identifiers.part4);
  record.description = device.Property(SPDRP_DEVICEDESC);
  record.provider = device.Property(SPDRP_MFG);
  if (!record.list.empty()) record.text3 = record.list.front();
  record.text4 = instanceId;
  record.text7 = device.Property(SPDRP_CLASS);
  record.text9 = device.Property(SPDRP_LOCATION_INFORMATION);
  record.text11 = device.Property(SPDRP_SERVICE);
  record.text14 = device.Property(SPDRP_FRIENDLYNAME);
  const RegKey driver = device.DriverKey();
  record.text12 = KeyText(driver, "DriverVersion");
  record.text13 = KeyText(driver, "DriverDate");
  const std::string inf = KeyText(driver, "InfPath");
  if (!inf.empty()) record.inf_name = infDirectory + inf;
  return record;
}

}  // namespace
}  // namespace Orvane

void GetPciInfo(std::vector<Orvane::PciDeviceRecord>& devices) {
  using namespace Orvane;
  const DeviceSet set(SetupDiGetClassDevsA(nullptr, nullptr, nullptr, DIGCF_PRESENT | DIGCF_ALLCLASSES));
  if (!set) {
    const DWORD error = GetLastError();
    ORVANE_LOG(2) << "The devices cannot be listed, error " << std::to_string(error);
    return;
  }
  const std::string infDirectory = InfDirectory();
  SP_DEVINFO_DATA data{};
  data.cbSize = sizeof(data);
  for (DWORD i = 0; SetupDiEnumDeviceInfo(set.get(), i, &data); ++i) {
    Device device(set.get(), data);
    const std::string instanceId = device.InstanceId();
    if (instanceId.empty()) {
      const DWORD error = GetLastError();
      ORVANE_LOG(2) << "A device cannot be read, error " << std::to_string(error);
      continue;
    }
    if (!HasEnumerator(instanceId, "PCI") && !HasEnumerator(instanceId, "ACPI")) continue;
    devices.push_back(Describe(device, instanceId, infDirectory));
  }
}
