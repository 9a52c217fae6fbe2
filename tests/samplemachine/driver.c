// A driver that does nothing but load and unload.
#include <ddk/wdm.h>

static void NTAPI Unload(DRIVER_OBJECT* driver) { (void)driver; }

NTSTATUS NTAPI DriverEntry(DRIVER_OBJECT* driver, UNICODE_STRING* registryPath) {
  (void)registryPath;
  driver->DriverUnload = Unload;
  return STATUS_SUCCESS;
}
