// clang-format off
#include "driverinfo.h"
#include <windows.h>
// clang-format on

static_assert(sizeof(Orvane::DriverInfoSetType) == sizeof(INT32), "a 32-bit enumeration");
