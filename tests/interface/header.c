/* The header is plain C99, alone, twice, and in front of windows.h. */
#include <driverinventory.h>

#include <windows.h>

#include "header_test.h"

driverinventory_options NoOptionsOfC(void) {
  driverinventory_options options = {sizeof(options), 0, 0, 0, NULL, NULL, NULL, NULL};
  return options;
}
