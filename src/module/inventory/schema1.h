/// @file
/// Inventories as the program recorded them before records knew what they are about: schema 1.
///
/// Its records were the library's: those of the device listing, those of the service listing that have an image, and
/// those OEM packages that the merged listing keeps. Nothing but its name says which service, device or package a
/// record is about, and one name may be several records.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "inventory/record.h"

namespace inventory {

struct Schema1Member {
  std::string_view name;
  std::string Record::*member;
};

/// What records of both schemas have, by its name in schema 1.
const std::array<Schema1Member, 8>& Schema1Members();

/// The member by which schema 1 says what a record is about.
constexpr std::string_view Schema1KindMember = "found_by";

/// What a record is about; nothing where `foundBy` is none of "service", "device" and "package". Chipset packages were
/// found as devices.
std::optional<Kind> Schema1Kind(std::string_view foundBy, const std::string& name);

/// What schema 1 would have recorded of `records`: Schema1Members() of
/// - services whose image is there;
/// - devices by each of `names`, the oldest version of each name, and, as devices too, the driver files of their
///   packages;
/// - chipset packages;
/// - OEM packages by each driver file, the oldest version of each name, unless a device has that name, or a service has
///   it in the same or an older version.
Records AsSchema1(const Records& records);

}  // namespace inventory
