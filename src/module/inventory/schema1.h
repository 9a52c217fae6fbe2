/// @file
/// Schema 1: inventories as the program recorded them before records said what they are about.
///
/// Its records were the library's: the device listing, the services that have an image, and the OEM packages that the
/// merged listing keeps. Only the name of a record says which service, device or package it is about, and several
/// records may have the same name.
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

/// The members that both schemas have, with their names in schema 1.
const std::array<Schema1Member, 8>& Schema1Members();

/// The member with which schema 1 says what a record is about.
constexpr std::string_view Schema1KindMember = "found_by";

/// What a record is about; nullopt if `foundBy` is not "service", "device" or "package". Chipset packages were recorded
/// as devices.
std::optional<Kind> Schema1Kind(std::string_view foundBy, const std::string& name);

/// The records that schema 1 would have made from `records`: Schema1Members() of
/// - services whose image exists;
/// - devices under each of `names`, the oldest version of each name, and, also as devices, the driver files of their
///   packages;
/// - chipset packages;
/// - OEM packages under each driver file, the oldest version of each name, unless a device has that name, or a service
///   has that name and the same or an older version.
Records AsSchema1(const Records& records);

}  // namespace inventory
