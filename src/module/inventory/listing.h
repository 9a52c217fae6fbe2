/// @file
/// The result of the listing library, exactly as a host gets it but in UTF-8. The only place that calls the library.
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
  /// Always set.
  std::optional<std::uint64_t> found_by_device = 0;
};

using ListingField = MemberOf<ListedDriver>;

/// All fields of a listed driver, in the order of the library's record.
const std::array<ListingField, 14>& ListingFields();

/// The value of `field` in `driver`. Unlike for ValueOf(), an empty text is a value, because the library returned it.
Value FieldOf(const ListedDriver& driver, const ListingField& field);

/// Which listing: of present devices, of registered services, or both merged with the OEM packages.
enum class ListingMode { ByDevice, Registered, All };

/// "by-device", "registered" or "all".
std::string_view ModeName(ListingMode mode);

/// Calls the library, which may return cached results from earlier in this process.
std::vector<ListedDriver> Listed(ListingMode mode);

/// Whether version `a` is older than `b` in the library's own order, which is circular if numbers and texts are mixed;
/// sort by VersionKey() instead.
bool IsOlder(const std::string& a, const std::string& b);

}  // namespace inventory
