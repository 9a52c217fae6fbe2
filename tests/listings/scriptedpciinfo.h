/// @file
/// A device inventory that reports what a test says.
#pragma once

#include "pciinfo.h"

/// What GetPciInfo appends from now on.
extern "C" PCIINFO_API void SetDevices(const std::vector<Orvane::PciDeviceRecord>& devices);

/// How often GetPciInfo was called, and whether always with an empty vector.
extern "C" PCIINFO_API int CallsWithEmptyVector();
