/// @file
/// Log lines that several listings end with or answer by.
#pragma once

#include "logcapture.h"

namespace test {

const LogLine FromCache{4, "Get data from cache."};
const LogLine NoIntel{1, "Failed to open SOFTWARE\\Intel\\InfInst\\ in HKEY_LOCAL_MACHINE"};
const LogLine NoAmd{1, "Failed to open SOFTWARE\\WOW6432Node\\AMD\\AMD_Chipset_Drivers\\ in HKEY_LOCAL_MACHINE"};
const LogLine NoPshed{
    1, "Failed to open SOFTWARE\\WOW6432Node\\AMD\\AMD EPYC SP3 PSHED Plug-in Driver\\ in HKEY_LOCAL_MACHINE"};
const LogLine StartServices{4, "Start to list registered driver files."};
const LogLine EnterImage{4, "Enter DriverInfoImp::GetDriveInfoFromSysFile()"};
const LogLine ExitImage{4, "Exiting DriverInfoImp::GetDriveInfoFromSysFile()"};

inline LogLine ServiceListed(const std::string& name, const std::string& version) {
  return {4, "DRIVERINFO.name=" + name + " DRIVERINFO.file_version=" + version};
}

inline LogLine ImageNotFound(const std::string& path) { return {4, "can not find bpname= " + path}; }

}  // namespace test
