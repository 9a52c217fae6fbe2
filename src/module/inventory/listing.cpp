#include "inventory/listing.h"

#include "driverinfo.h"
#include "platform/encoding.h"

namespace inventory {
namespace {

using Orvane::DriverData;
using Orvane::Utf8FromAnsi;

ListedDriver InUtf8(const DriverData& driver) {
  ListedDriver listed;
  for (const auto& [from, to] :
       {std::pair(&DriverData::name, &ListedDriver::name),
        std::pair(&DriverData::description, &ListedDriver::description),
        std::pair(&DriverData::provider, &ListedDriver::provider), std::pair(&DriverData::path, &ListedDriver::path),
        std::pair(&DriverData::file_version, &ListedDriver::file_version),
        std::pair(&DriverData::state, &ListedDriver::state),
        std::pair(&DriverData::start_type, &ListedDriver::start_type),
        std::pair(&DriverData::date, &ListedDriver::date), std::pair(&DriverData::size, &ListedDriver::size),
        std::pair(&DriverData::product_version, &ListedDriver::product_version),
        std::pair(&DriverData::reserved1, &ListedDriver::reserved1),
        std::pair(&DriverData::reserved2, &ListedDriver::reserved2)}) {
    listed.*to = Utf8FromAnsi(driver.*from);
  }
  for (const std::string& text : driver.reserved_list) listed.reserved_list.push_back(Utf8FromAnsi(text));
  listed.found_by_device = static_cast<std::uint64_t>(driver.found_by_device);
  return listed;
}

constexpr ListingField Of(std::string_view name, std::string_view label, ValueType type, ListingField::Source source,
                          unsigned width) {
  ListingField field{};
  field.name = name;
  field.label = label;
  field.type = type;
  field.source = source;
  field.width = width;
  field.floor = 15;
  field.isWhole = IsWhole(type);
  return field;
}

constexpr ListingField Shown(unsigned tablePlace, unsigned pagePlace, unsigned floor, ListingField field) {
  field.tablePlace = tablePlace;
  field.pagePlace = pagePlace;
  field.floor = floor;
  return field;
}

constexpr ListingField Title(ListingField field) {
  field.isTitle = true;
  return field;
}

constexpr ListingField KeepsEnd(ListingField field) {
  field.keepsEnd = true;
  return field;
}

constexpr ListingField Leaves(unsigned place, ListingField field) {
  field.leavesAs = place;
  return field;
}

constexpr ListingField Whole(ListingField field) {
  field.isWhole = true;
  return field;
}

using D = ListedDriver;
using T = ValueType;

// `date` and `size` are texts, as the library gives them; sizes are ordered as numbers.
constexpr std::array<ListingField, 14> Fields = {
    Title(Shown(1, 1, 20, Of("name", "Name", T::Text, &D::name, 18))),
    Shown(0, 2, 10, Of("description", "Description", T::Text, &D::description, 20)),
    Leaves(2, Shown(5, 3, 8, Of("provider", "Provider", T::Text, &D::provider, 15))),
    Leaves(1, KeepsEnd(Shown(6, 9, 16, Of("path", "Path", T::Text, &D::path, 22)))),
    Shown(2, 4, 15, Of("file_version", "Version", T::Version, &D::file_version, 14)),
    Leaves(4, Whole(Shown(3, 5, 15, Of("state", "State", T::Text, &D::state, 9)))),
    Leaves(3, Whole(Shown(4, 6, 15, Of("start_type", "Start", T::Text, &D::start_type, 10)))),
    Whole(Shown(0, 7, 15, Of("date", "Image date", T::Text, &D::date, 16))),
    Shown(0, 8, 15, Of("size", "Size, KiB", T::Number, &D::size, 7)),
    Of("product_version", "Product version", T::Version, &D::product_version, 14),
    Of("reserved1", "Reserved 1", T::Text, &D::reserved1, 10),
    Of("reserved2", "Reserved 2", T::Text, &D::reserved2, 10),
    Of("reserved_list", "Reserved list", T::Texts, &D::reserved_list, 10),
    Of("found_by_device", "Found by device", T::Number, &D::found_by_device, 8)};

Orvane::DriverInfoSetType TypeOf(ListingMode mode) {
  switch (mode) {
    case ListingMode::ByDevice:
      return Orvane::ByDevice;
    case ListingMode::Registered:
      return Orvane::Registered;
    case ListingMode::All:
      break;
  }
  return Orvane::All;
}

}  // namespace

const std::array<ListingField, 14>& ListingFields() { return Fields; }

Value FieldOf(const ListedDriver& driver, const ListingField& field) {
  return std::visit(
      [&driver](auto source) {
        if constexpr (std::is_same_v<decltype(source), std::optional<std::uint64_t> D::*>) {
          return Value(*(driver.*source));
        } else if constexpr (std::is_member_pointer_v<decltype(source)>) {
          return Value(driver.*source);
        } else {
          return Value(source(driver));
        }
      },
      field.source);
}

std::string_view ModeName(ListingMode mode) {
  constexpr std::array<std::string_view, 3> names = {"by-device", "registered", "all"};
  return names[static_cast<std::size_t>(mode)];
}

std::vector<ListedDriver> Listed(ListingMode mode) {
  std::vector<DriverData> drivers;
  Orvane::DriverInfo().list_drivers(drivers, TypeOf(mode));
  std::vector<ListedDriver> listed;
  listed.reserve(drivers.size());
  for (const DriverData& driver : drivers) listed.push_back(InUtf8(driver));
  return listed;
}

bool IsOlder(const std::string& a, const std::string& b) {
  DriverData driverA;
  DriverData driverB;
  driverA.file_version = a;
  driverB.file_version = b;
  return driverA < driverB;
}

}  // namespace inventory
