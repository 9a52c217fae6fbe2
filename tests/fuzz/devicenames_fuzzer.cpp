// The names of devices and of the records that bind drivers to them, and the identities that identifiers tell.
#include <fuzzer/FuzzedDataProvider.h>

#include <vector>

#include "deviceidentity.h"
#include "drivernames.h"
#include "model.h"
#include "pciinfo.h"

namespace {

using model::Cut;
using model::First;
using model::Length;

std::string BaseName(const std::string& name) {
  const std::string lower = model::Lower(name);
  if (First(lower, ".inf") >= 0) return Cut(name, 0, First(lower, ".inf"));
  if (First(lower, ".sys") >= 0) return Cut(name, 0, First(lower, ".sys"));
  return name;
}

std::string Identity(const Orvane::PciDeviceRecord& device) {
  std::string identity = device.vendor_id;
  for (const std::string& part : {device.device_id, device.identity_part3, device.identity_part4}) {
    identity += '-';
    identity += part;
  }
  return identity;
}

std::string RecordName(const Orvane::PciDeviceRecord& device, const std::string& base) {
  if (device.vendor_id == "INTC") {
    for (const char* const id : {"105E", "1083"}) {
      if (device.device_id == id) return "INTC-VOKTA_IALPSS2_GPIO2_MTL_0000-0000-0000-0000";
    }
    for (const char* const id :
         {"1051", "1054", "1070", "1076", "1077", "1078", "107B", "10CB", "10CC", "10F1", "10F2", "110E"}) {
      if (device.device_id == id) return "INTC-VOKTA_HIDEVENTFILTER_0000-0000-0000-0000";
    }
  }
  std::string name = base;
  if (!base.empty()) name += '_';
  name += Identity(device);
  if (base.empty()) name += "_nodriver#";
  return name;
}

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts(1);
  for (const char c : text) {
    if (c == separator) {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  return parts;
}

bool HasOnly(const std::string& text, const std::string& allowed) {
  for (const char c : text) {
    if (allowed.find(c) == std::string::npos || c == '\0') return false;
  }
  return true;
}

const std::string HexDigits = "0123456789abcdefABCDEF";
const std::string LettersAndDigits = "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";

bool IsPlatformVendor(const std::string& text) {
  return (text.size() == 3 || text.size() == 4) && HasOnly(text, LettersAndDigits);
}

/// The first of the fields "prefixVALUE", without the prefix; empty when there is none.
std::string Field(const std::vector<std::string>& fields, const std::string& prefix) {
  for (const std::string& field : fields) {
    if (model::StandsAt(model::Lower(field), 0, prefix)) return Cut(field, Length(prefix), Length(field));
  }
  return std::string();
}

/// "vendor-device-part3-part4"; empty for an identifier of another form.
std::string IdentityOf(const std::string& identifier) {
  const std::vector<std::string> parts = Split(identifier, '\\');
  if (parts.size() < 2) return std::string();
  const std::string enumerator = model::Lower(parts[0]);
  const std::vector<std::string> fields = Split(parts[1], '&');
  std::string vendor = Field(fields, "ven_");
  std::string device = Field(fields, "dev_");
  const bool hasDevice = device.size() == 4 && HasOnly(device, HexDigits);
  if (enumerator == "pci") {
    if (vendor.size() != 4 || !HasOnly(vendor, HexDigits) || !hasDevice) return std::string();
    const std::string subsystem = Field(fields, "subsys_");
    if (subsystem.size() != 8 || !HasOnly(subsystem, HexDigits)) return vendor + "-" + device + "-0000-0000";
    return vendor + "-" + device + "-" + Cut(subsystem, 4, 8) + "-" + Cut(subsystem, 0, 4);
  }
  if (enumerator != "acpi") return std::string();
  if (!IsPlatformVendor(vendor) || !hasDevice) {
    const std::string& word = fields[0];
    if (word.size() < 4) return std::string();
    vendor = Cut(word, 0, Length(word) - 4);
    device = Cut(word, Length(word) - 4, Length(word));
    if (!IsPlatformVendor(vendor) || !HasOnly(device, HexDigits)) return std::string();
  }
  return vendor + "-" + device + "-0000-0000";
}

std::string Parsed(const std::string& identifier) {
  const auto parsed = Orvane::ParseIdentifier(identifier);
  return parsed ? parsed->vendor + "-" + parsed->device + "-" + parsed->part3 + "-" + parsed->part4 : std::string();
}

std::string AnyIdentifier(FuzzedDataProvider& input) {
  static const char* const known[] = {"INTC", "105E", "1083", "1051", "1054", "1070", "1076", "1077", "1078",
                                      "107B", "10CB", "10CC", "10F1", "10F2", "110E", "1099", "105e", "intc"};
  return input.ConsumeBool() ? input.PickValueInArray(known) : input.ConsumeRandomLengthString();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  Orvane::PciDeviceRecord device;
  device.vendor_id = AnyIdentifier(input);
  device.device_id = AnyIdentifier(input);
  device.identity_part3 = AnyIdentifier(input);
  device.identity_part4 = AnyIdentifier(input);
  const std::string identifier = input.ConsumeRandomLengthString();
  const std::string name = input.ConsumeRemainingBytesAsString();
  model::Expect("DriverBaseName", Orvane::DriverBaseName(name), BaseName(name));
  model::Expect("DeviceIdentity", Orvane::DeviceIdentity(device), Identity(device));
  model::Expect("DeviceRecordName", Orvane::DeviceRecordName(device, name), RecordName(device, name));
  model::Expect("DeviceRecordName without base", Orvane::DeviceRecordName(device, ""), RecordName(device, ""));
  for (const std::string& text : {identifier, "PCI\\" + identifier, "acpi\\" + identifier, name}) {
    model::Expect("ParseIdentifier", Parsed(text), IdentityOf(text));
    const std::vector<std::string> parts = Split(text, '\\');
    const bool isPci = parts.size() > 1 && model::Lower(parts[0]) == "pci";
    model::Expect("HasEnumerator", Orvane::HasEnumerator(text, "PCI"), isPci);
  }
  return 0;
}
