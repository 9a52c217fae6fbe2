#include "inventory/record.h"

#include <array>

#include "platform/encoding.h"

namespace inventory {
namespace {

constexpr std::array<std::string_view, 4> KindNames = {"service", "device", "package", "chipset"};

}  // namespace

std::string_view KindName(Kind kind) { return KindNames[static_cast<std::size_t>(kind)]; }

std::optional<Kind> KindNamed(std::string_view name) {
  for (const Kind kind : {Kind::Service, Kind::Device, Kind::Package, Kind::Chipset}) {
    if (KindName(kind) == name) return kind;
  }
  return std::nullopt;
}

const std::string& KeyTextOf(const Record& record) {
  switch (record.kind) {
    case Kind::Service:
      return record.service;
    case Kind::Device:
      return record.instance_id;
    case Kind::Package:
      return record.inf;
    case Kind::Chipset:
      break;
  }
  return record.name;
}

std::string KeyOf(const Record& record) { return Orvane::LowerCase(KeyTextOf(record)); }

}  // namespace inventory
