#include <set>

#include "inventory/inventory.h"
#include "inventory/join.h"
#include "packagefiles.h"
#include "platform/encoding.h"

namespace inventory {
namespace {

using Orvane::Utf8FromAnsi;

ImageTexts ReadImage(const std::string& path) {
  Orvane::SysFileInfo info;
  Orvane::PackageFiles::GetDriveInfoFromSysFile(Orvane::AnsiFromUtf8(path), info);
  return {Utf8FromAnsi(info.description), Utf8FromAnsi(info.company), Utf8FromAnsi(info.file_version),
          Utf8FromAnsi(info.product_version)};
}

std::set<std::string> InfsInUse(const std::vector<DeviceFacts>& devices) {
  std::set<std::string> infs;
  for (const DeviceFacts& device : devices) {
    if (!device.inf.empty()) infs.insert(device.inf);
  }
  return infs;
}

Facts ReadFacts() {
  Facts facts;
  facts.listedDevices = Listed(ListingMode::ByDevice);
  facts.listedServices = Listed(ListingMode::Registered);
  facts.services = ReadServices();
  facts.devices = ReadPresentDevices();
  facts.nodes = ReadDeviceNodes();
  facts.packages = ReadPackages(InfsInUse(facts.devices));
  return facts;
}

}  // namespace

Inventory Collect(const std::string& hostId) { return {ThisMachine(hostId), Join(ReadFacts(), &ReadImage)}; }

}  // namespace inventory
