/// @file
/// What the tests of the listings share.
#pragma once

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "driverinfo.h"
#include "expectedlines.h"
#include "records.h"
#include "scratchmachine.h"
#include "scriptedpciinfo.h"

namespace test {

/// A device that a test scripts.
inline Orvane::PciDeviceRecord ScriptedDevice(const std::string& vendor, const std::string& device,
                                              const std::string& inf, const std::string& part3 = "0000",
                                              const std::string& part4 = "0000") {
  Orvane::PciDeviceRecord record;
  record.vendor_id = vendor;
  record.device_id = device;
  record.identity_part3 = part3;
  record.identity_part4 = part4;
  record.inf_name = inf;
  record.description = "device " + device;
  record.provider = "maker " + vendor;
  return record;
}

/// The lines of an INF of version 1.2.3.4 by Example Networks that lists `files` on a disk called "Driver disk".
inline std::vector<std::string> PackageLines(const std::vector<std::string>& files,
                                             const std::string& version = "1.2.3.4") {
  std::vector<std::string> lines = {"[Version]",
                                    "Signature=\"$WINDOWS NT$\"",
                                    "Provider=\"Example Networks\"",
                                    "DriverVer=06/21/2006," + version,
                                    "[SourceDisksNames]",
                                    "1=\"Driver disk\"",
                                    "[SourceDisksFiles]"};
  for (const std::string& file : files) lines.push_back(file + "=1");
  return lines;
}

/// Described() of a record of such a package.
inline std::string PackageRecord(const std::string& name, int foundByDevice, const std::string& version = "1.2.3.4") {
  return "name=" + name + "; description=Driver disk; provider=Example Networks; file_version=" + version +
         "; found_by_device=" + std::to_string(foundByDevice);
}

inline std::string NoDriverRecord(const std::string& name, const std::string& device, const std::string& vendor) {
  return "name=" + name + "; description=device " + device + "; provider=maker " + vendor +
         "; file_version=N/A; found_by_device=1";
}

const LogLine StartDevices{4, "Start list exist device driver files."};
const LogLine StartOem{4, "Start to list driver files from OemInf."};

inline LogLine Before(int count) { return {4, "driverlist size before erase unique:" + std::to_string(count)}; }
inline LogLine After(int count) { return {4, "driverlist size after erase unique:" + std::to_string(count)}; }

/// The lines of a package as PackageLines() makes them, with one ".sys" file.
inline std::vector<LogLine> PackageLog(const std::string& path, const std::string& sysFile,
                                       const std::string& version = "1.2.3.4") {
  return {{4, "Start to parse " + path},
          {4, "Get driver version: " + version},
          {4, "exist sys file: " + sysFile},
          {4, "Get driver file: " + sysFile}};
}

inline std::vector<LogLine> operator+(std::vector<LogLine> a, const std::vector<LogLine>& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

class Listing : public ScratchMachine {
 protected:
  std::vector<std::string> List(Orvane::DriverInfoSetType mode) {
    std::vector<Orvane::DriverData> drivers;
    EXPECT_EQ(info.list_drivers(drivers, mode), 0);
    return Described(drivers);
  }

  Orvane::DriverInfo info;
  LogCapture log;
};

}  // namespace test
