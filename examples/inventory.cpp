// A device inventory of one's own. A module called pciinfo.dll with this one export, beside driverinfo.dll in the place
// of the one that comes with it, says what the device listing lists: here a device that the machine's own bus does not
// show.
#include <pciinfo.h>

void GetPciInfo(std::vector<Orvane::PciDeviceRecord>& devices) {
  Orvane::PciDeviceRecord camera;
  camera.vendor_id = "1EA0";
  camera.device_id = "0042";
  camera.identity_part3 = "0000";
  camera.identity_part4 = "0000";
  camera.description = "Inspection camera";
  camera.provider = "Example Optics";
  // With the path of an installed INF file here, the drivers of that package would be listed.
  camera.inf_name = "";
  devices.push_back(camera);
}
