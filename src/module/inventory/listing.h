/// @file
/// The listing library's own answer, exactly as a host gets it but in UTF-8. The one door to that library.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "inventory/members.h"

namespace inventory {

/// One record of a listing; driverinfo.h says what its fields are.
struct ListedDriver {
  std::string name;
  std::string description;
  std::string provider;
  std::string path;
  std::string file_version;
  std::string state;
  std::string start_type;
  std::string date;
  std::string size;
  std::string product_version;
  std::string reserved1;
  std::string reserved2;
  std::vector<std::string> reserved_list;
  /// Always there.
  std::optional<std::uint64_t> found_by_device = 0;
};

using ListingField = MemberOf<ListedDriver>;

/// All fields of a listed driver, in the order of the library's record.
const std::array<ListingField, 14>& ListingFields();

/// What `driver` has of `field`. Unlike ValueOf(), an empty text is a value: it is what the library said.
Value FieldOf(const ListedDriver& driver, const ListingField& field);

/// Which listing: that of present devices, that of registered services, or both and the OEM packages merged.
enum class ListingMode { ByDevice, Registered, All };

/// "by-device", "registered" or "all".
std::string_view ModeName(ListingMode mode);

/// Asks the library. What it found before in this process it may answer again.
std::vector<ListedDriver> Listed(ListingMode mode);

/// Whether version `a` is older than `b` by the library's own order. It contradicts itself where numbers and texts mix;
/// sort by VersionKey() instead.
bool IsOlder(const std::string& a, const std::string& b);

}  // namespace inventory
