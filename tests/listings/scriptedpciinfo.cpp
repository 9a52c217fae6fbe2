#include "scriptedpciinfo.h"

namespace {

std::vector<Orvane::PciDeviceRecord> scripted;
int calls = 0;

}  // namespace

void SetDevices(const std::vector<Orvane::PciDeviceRecord>& devices) { scripted = devices; }

int CallsWithEmptyVector() { return calls; }

void GetPciInfo(std::vector<Orvane::PciDeviceRecord>& devices) {
  if (devices.empty()) ++calls;
  devices.insert(devices.end(), scripted.begin(), scripted.end());
}
