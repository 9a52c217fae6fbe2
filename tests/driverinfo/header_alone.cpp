// The public header needs nothing before it, and may come twice.
// clang-format off
#include "driverinfo.h"
#include "driverinfo.h"
// clang-format on

#ifdef _WINDOWS_
#error driverinfo.h includes windows.h
#endif

static_assert(sizeof(Orvane::DriverInfo) == sizeof(void*), "one pointer wide");
