#include <windows.h>

#include "bare.h"
#include "pciinfo.h"

namespace bench::bare {
namespace {

void ReadChipsetPackage(const char* path, const char* value, const Record& known, Records& records) {
  HKEY key = nullptr;
  if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, path, 0, KEY_READ | KEY_WOW64_64KEY, &key) != ERROR_SUCCESS) return;
  char version[1024] = "";
  DWORD size = sizeof(version);
  DWORD type = REG_SZ;
  if (RegQueryValueExA(key, value, nullptr, &type, reinterpret_cast<BYTE*>(version), &size) != ERROR_SUCCESS) return;
  records.push_back(known);
  records.back().fileVersion = version;
}

Record Chipset(const char* name, const char* description, const char* provider) {
  Record record;
  record.name = name;
  record.description = description;
  record.provider = provider;
  return record;
}

}  // namespace

void ReadChipsetPackages(Records& records) {
  ReadChipsetPackage("SOFTWARE\\Intel\\InfInst\\", "Version", Chipset("intel_chipset", "Intel chipset Driver", "Intel"),
                     records);
  ReadChipsetPackage("SOFTWARE\\WOW6432Node\\AMD\\AMD_Chipset_Drivers\\", "ProductVersion",
                     Chipset("amd_chipset", "Amd chipset Driver", "Amd"), records);
  ReadChipsetPackage("SOFTWARE\\WOW6432Node\\AMD\\AMD EPYC SP3 PSHED Plug-in Driver\\", "ProductVersion",
                     Chipset("amd_ppd", "Amd EPYC SP3 PSHED Plug-in Driver", "Amd"), records);
}

Records ListDevices() {
  std::vector<Orvane::PciDeviceRecord> devices;
  GetPciInfo(devices);
  Records records;
  for (const Orvane::PciDeviceRecord& device : devices) {
    if (!device.inf_name.empty()) {
      ReadPackage(device.inf_name, records);
      continue;
    }
    Record record;
    record.name = device.vendor_id + "-" + device.device_id + "-" + device.identity_part3 + "-" +
                  device.identity_part4 + "_nodriver#";
    record.description = device.description;
    record.provider = device.provider;
    record.fileVersion = "N/A";
    records.push_back(std::move(record));
  }
  ReadChipsetPackages(records);
  return records;
}

Records ListAll() {
  Records records = ListDevices();
  for (Records more : {ListServices(), ListOemPackages()}) {
    records.insert(records.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
  }
  return records;
}

}  // namespace bench::bare
