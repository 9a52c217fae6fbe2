// clang-format off
#include <windows.h>
#include "driverinfo.h"
// clang-format on

static_assert(Orvane::ByDevice == 0 && Orvane::Registered == 1 && Orvane::All == 2, "values that hosts store");
