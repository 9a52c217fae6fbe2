#include <array>
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

struct ReadingStep {
  std::string_view what;
  void (*read)(Facts& facts);
};

constexpr std::array<ReadingStep, 6> ReadingSteps = {
    {{"drivers of devices", [](Facts& facts) { facts.listedDevices = Listed(ListingMode::ByDevice); }},
     {"drivers of services", [](Facts& facts) { facts.listedServices = Listed(ListingMode::Registered); }},
     {"services", [](Facts& facts) { facts.services = ReadServices(); }},
     {"present devices", [](Facts& facts) { facts.devices = ReadPresentDevices(); }},
     {"all devices", [](Facts& facts) { facts.nodes = ReadDeviceNodes(); }},
     {"packages", [](Facts& facts) { facts.packages = ReadPackages(InfsInUse(facts.devices)); }}}};

Facts ReadFacts(const CollectOptions& options) {
  Facts facts;
  std::uint64_t done = 0;
  for (const ReadingStep& step : ReadingSteps) {
    if (options.progress && !options.progress({step.what, done++, ReadingSteps.size()})) throw CollectionStopped();
    step.read(facts);
  }
  return facts;
}

}  // namespace

Inventory Collect(const CollectOptions& options) {
  Inventory inventory{ThisMachine(options.hostId), Join(ReadFacts(options), &ReadImage)};
  if (!options.verification) return inventory;
  inventory.isVerified = Verify(inventory.records, *options.verification);
  if (!inventory.isVerified) throw CollectionStopped();
  if (options.verification->known != nullptr) inventory.lists = options.verification->known->Lists();
  inventory.isLookedUp = !inventory.lists.empty();
  return inventory;
}

}  // namespace inventory
