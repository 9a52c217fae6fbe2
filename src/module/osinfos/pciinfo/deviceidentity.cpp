#include "deviceidentity.h"

#include <algorithm>
#include <cctype>

namespace Orvane {
namespace {

bool IsHexDigit(char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; }
bool IsLetterOrDigit(char c) {
  return static_cast<unsigned char>(c) < 0x80 && std::isalnum(static_cast<unsigned char>(c)) != 0;
}

bool IsHexNumber(std::string_view text, std::size_t digits) {
  return text.size() == digits && std::all_of(text.begin(), text.end(), IsHexDigit);
}

/// Vendors of platform devices have three or four characters; a few are numbers, such as "8086".
bool IsPlatformVendor(std::string_view text) {
  return (text.size() == 3 || text.size() == 4) && std::all_of(text.begin(), text.end(), IsLetterOrDigit);
}

bool StartsWith(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && std::equal(prefix.begin(), prefix.end(), text.begin(), [](char a, char b) {
           return std::toupper(static_cast<unsigned char>(a)) == std::toupper(static_cast<unsigned char>(b));
         });
}

/// "15F3" for "DEV_" in "VEN_8086&DEV_15F3"; empty if there is no such field.
std::string_view Field(std::string_view fields, std::string_view prefix) {
  while (!fields.empty()) {
    const std::size_t end = std::min(fields.find('&'), fields.size());
    if (StartsWith(fields.substr(0, end), prefix)) return fields.substr(prefix.size(), end - prefix.size());
    fields.remove_prefix(std::min(end + 1, fields.size()));
  }
  return {};
}

std::optional<DeviceIdentifiers> Identifiers(std::string_view vendor, std::string_view device) {
  DeviceIdentifiers identifiers;
  identifiers.vendor = vendor;
  identifiers.device = device;
  return identifiers;
}

std::optional<DeviceIdentifiers> ParsePci(std::string_view fields) {
  const std::string_view vendor = Field(fields, "VEN_");
  const std::string_view device = Field(fields, "DEV_");
  if (!IsHexNumber(vendor, 4) || !IsHexNumber(device, 4)) return std::nullopt;
  auto identifiers = Identifiers(vendor, device);
  const std::string_view subsystem = Field(fields, "SUBSYS_");
  if (IsHexNumber(subsystem, 8)) {
    // The subsystem device comes before the subsystem vendor.
    identifiers->part4 = subsystem.substr(0, 4);
    identifiers->part3 = subsystem.substr(4);
  }
  return identifiers;
}

std::optional<DeviceIdentifiers> ParseAcpi(std::string_view fields) {
  const std::string_view vendor = Field(fields, "VEN_");
  const std::string_view device = Field(fields, "DEV_");
  if (IsPlatformVendor(vendor) && IsHexNumber(device, 4)) return Identifiers(vendor, device);
  // Vendor and device in one word; the device is its last four characters.
  const std::string_view word = fields.substr(0, fields.find('&'));
  if (word.size() < 4) return std::nullopt;
  const std::size_t split = word.size() - 4;
  if (!IsPlatformVendor(word.substr(0, split)) || !IsHexNumber(word.substr(split), 4)) return std::nullopt;
  return Identifiers(word.substr(0, split), word.substr(split));
}

}  // namespace

bool HasEnumerator(std::string_view instanceId, std::string_view enumerator) {
  return StartsWith(instanceId, enumerator) && instanceId.substr(enumerator.size(), 1) == "\\";
}

std::optional<DeviceIdentifiers> ParseIdentifier(std::string_view identifier) {
  const std::size_t begin = identifier.find('\\');
  if (begin == std::string_view::npos) return std::nullopt;
  // An instance identifier continues after a second "\".
  const std::string_view device = identifier.substr(begin + 1);
  const std::string_view fields = device.substr(0, device.find('\\'));
  if (HasEnumerator(identifier, "PCI")) return ParsePci(fields);
  if (HasEnumerator(identifier, "ACPI")) return ParseAcpi(fields);
  return std::nullopt;
}

}  // namespace Orvane
