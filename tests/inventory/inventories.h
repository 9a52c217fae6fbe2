/// @file
/// Inventories for tests, and how tests look at them.
#pragma once

#include <sstream>
#include <string>

#include "inventory/inventory.h"
#include "inventory/json.h"
#include "inventory/snapshot.h"

namespace test {

/// All members of a record, as JSON.
inline std::string Described(const inventory::Record& record) {
  inventory::Json json = inventory::Json::object();
  inventory::AddMembers(json, record);
  return inventory::JsonText(json, false);
}

/// Schema, head and all records, a line each.
inline std::string Described(const inventory::Inventory& inventory) {
  std::string text = "schema " + std::to_string(inventory.schema) + " " +
                     inventory::JsonText(inventory::HeadJson(inventory.head), false) + "\n";
  for (const inventory::Record& record : inventory.records) text += Described(record) + "\n";
  return text;
}

inline inventory::Inventory ReadSnapshotText(const std::string& text) {
  std::stringbuf buffer(text, std::ios_base::in);
  return inventory::ReadSnapshot(buffer);
}

inline inventory::Record ServiceRecord(const std::string& service, const std::string& version,
                                       const std::string& path = "") {
  inventory::Record record;
  record.kind = inventory::Kind::Service;
  record.name = service + ".sys";
  record.service = service;
  record.version = version;
  record.path = path;
  return record;
}

inline inventory::Record DeviceRecord(const std::string& instance, const std::string& version,
                                      const std::string& inf = "", const std::string& service = "") {
  inventory::Record record;
  record.kind = inventory::Kind::Device;
  record.name = instance + "_name";
  record.instance_id = instance;
  record.version = version;
  record.inf = inf;
  record.service = service;
  return record;
}

inline inventory::Record PackageRecord(const std::string& inf, const std::string& version,
                                       const std::string& originalInf = "",
                                       const std::vector<std::string>& files = {}) {
  inventory::Record record;
  record.kind = inventory::Kind::Package;
  record.name = files.empty() ? inf : files.front();
  record.inf = inf;
  record.version = version;
  record.original_inf = originalInf;
  record.files = files;
  return record;
}

/// A snapshot of schema 1, as the program of that time wrote it: a device, a device without driver, a chipset package,
/// two services of one image name and an OEM package.
inline const std::string Schema1Text = R"({
  "kind": "driverlist snapshot",
  "schema_version": 1,
  "host": "h\u00f6st",
  "windows": "10.0.22621",
  "tool_version": "0.1.0",
  "time": "2024-05-06T07:08:09Z",
  "drivers": [
    {"found_by": "device", "name": "net_8086-15F3-1028-0A5C", "description": "Disk", "provider": "Maker", "path": "",
     "file_version": "1.2.3", "state": "", "start_type": "", "date": "", "size": "", "product_version": "",
     "reserved1": "", "reserved2": "", "reserved_list": [], "found_by_device": 1},
    {"found_by": "device", "name": "8086-7E4C-1028-0A5C_nodriver#", "description": "Thing", "provider": "Maker",
     "path": "", "file_version": "N/A", "state": "", "start_type": "", "date": "", "size": "", "product_version": "",
     "reserved1": "", "reserved2": "", "reserved_list": [], "found_by_device": 1},
    {"found_by": "device", "name": "intel_chipset", "description": "Intel chipset Driver", "provider": "Intel",
     "path": "", "file_version": "10.1", "state": "", "start_type": "", "date": "", "size": "", "product_version": "",
     "reserved1": "", "reserved2": "", "reserved_list": [], "found_by_device": 1},
    {"found_by": "service", "name": "Ger\u00e4t.sys", "description": "d", "provider": "p", "path": "C:\\a\\Ger\u00e4t.sys",
     "file_version": "1.0", "state": "Running", "start_type": "Manual", "date": "05/06/2024 07:08:09", "size": "42",
     "product_version": "1.1", "reserved1": "", "reserved2": "", "reserved_list": [], "found_by_device": 0},
    {"found_by": "service", "name": "Ger\u00e4t.sys", "description": "d", "provider": "p", "path": "C:\\b\\Ger\u00e4t.sys",
     "file_version": "", "state": "Stopped", "start_type": "Manual", "date": "", "size": "1",
     "product_version": "", "reserved1": "", "reserved2": "", "reserved_list": ["x"], "found_by_device": 0},
    {"found_by": "package", "name": "old.sys", "description": "Disk", "provider": "Maker", "path": "",
     "file_version": "2.0", "state": "", "start_type": "", "date": "", "size": "", "product_version": "",
     "reserved1": "", "reserved2": "", "reserved_list": [], "found_by_device": 0}
  ]
}
)";

}  // namespace test
