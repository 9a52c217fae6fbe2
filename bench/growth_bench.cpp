// How a device listing and a combined listing grow with the number of devices and of records, without the questions to
// Windows: the devices are scripted, and there are no services and OEM packages.
#include <windows.h>

#include <algorithm>
#include <map>
#include <random>
#include <stdexcept>

#include "figures.h"
#include "freshlibrary.h"
#include "importhook.h"
#include "pciinfo.h"

namespace {

using Devices = std::vector<Orvane::PciDeviceRecord>;
using Records = std::vector<bench::Record>;

/// `count` devices without a driver, in no order.
Devices MakeDevices(int count) {
  Devices devices;
  for (int i = 0; i < count; ++i) {
    char id[20];
    std::snprintf(id, sizeof(id), "%08X", i);
    Orvane::PciDeviceRecord device;
    device.vendor_id = "10EC";
    device.device_id = id;
    device.identity_part3 = "1028";
    device.identity_part4 = "0A5C";
    device.description = "Sample component " + std::to_string(i);
    device.provider = "Sample maker";
    devices.push_back(std::move(device));
  }
  std::shuffle(devices.begin(), devices.end(), std::mt19937(1));
  return devices;
}

/// `count` records in no order: one in four has the name of a device's record, two in four have one name.
Records MakeRecords(int count) {
  Records records;
  for (int i = 0; i < count; ++i) {
    char name[60];
    std::snprintf(name, sizeof(name), i % 4 == 0 ? "10EC-%08X-1028-0A5C_nodriver#" : "driver%08X.sys", i - i % 2);
    bench::Record record;
    record.name = name;
    record.description = "Driver of the sample component";
    record.provider = "Sample maker";
    record.fileVersion = "10.0.22621." + std::to_string(i);
    records.push_back(std::move(record));
  }
  std::shuffle(records.begin(), records.end(), std::mt19937(2));
  return records;
}

const Devices& DevicesOf(int count) {
  static std::map<int, Devices> all;
  const auto place = all.find(count);
  return place != all.end() ? place->second : all.emplace(count, MakeDevices(count)).first->second;
}

/// A fresh listing of `count` devices, behind `count` records.
double ListingSeconds(int mode, int count) {
  const Devices& devices = DevicesOf(count);
  bench::FreshLibrary library;
  HOOK(inventory, library.Module(), GetPciInfo, [&](Devices& found) { found = devices; });
  HOOK(services, library.Module(), OpenSCManagerA,
       [](const char*, const char*, DWORD) -> SC_HANDLE { return nullptr; });
  HOOK(packages, library.Module(), GetSystemWindowsDirectoryA, [](char*, UINT) { return 0u; });
  if (mode == 2) library.SetRecords(MakeRecords(count));
  const double seconds = bench::Seconds([&] { library.List(mode); });
  if (library.TakeRecords().size() < static_cast<std::size_t>(count)) throw std::runtime_error("records are missing");
  return seconds;
}

void AddDoublings(const std::string& name, int mode) {
  for (int count = 8000; count < 128000; count *= 2) {
    const std::string from = std::to_string(count / 1000) + ",000";
    const std::string to = std::to_string(count / 500) + ",000";
    bench::AddComparison({name + ", " + from + " to " + to, "ms", 2.4, from,
                          [=] { return ListingSeconds(mode, count); }, to,
                          [=] { return ListingSeconds(mode, 2 * count); }});
  }
}

void AddFigures() {
  AddDoublings("Sort of devices", 0);
  AddDoublings("Merge and sort of devices and records", 2);
}

}  // namespace

int main(int argc, char** argv) { return bench::Main(argc, argv, &AddFigures); }
