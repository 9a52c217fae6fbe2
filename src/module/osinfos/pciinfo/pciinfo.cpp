#include "pciinfo.h"

void GetPciInfo(std::vector<Orvane::PciDeviceRecord>&) {}
