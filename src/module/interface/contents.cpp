#include "interface/contents.h"

#include <array>
#include <utility>

#include "interface/exclusive.h"

namespace flat {
namespace {

using inventory::Member;
using inventory::Record;

constexpr std::size_t NoPlace = static_cast<std::size_t>(-1);

using Derive = std::string (*)(const Record&);

}  // namespace

/// The places of texts that are derived from others: one for each member, and their number.
struct DerivedPlaces {
  DerivedPlaces() {
    for (const Member& member : inventory::Members()) {
      const bool isDerived = std::holds_alternative<Derive>(member.source);
      places[static_cast<std::size_t>(&member - inventory::Members().data())] = isDerived ? count++ : NoPlace;
    }
  }

  std::size_t Of(const Member& member) const {
    return places[static_cast<std::size_t>(&member - inventory::Members().data())];
  }

  std::array<std::size_t, std::tuple_size_v<std::decay_t<decltype(inventory::Members())>>> places{};
  std::size_t count = 0;
};

namespace {

SRWLOCK lock = SRWLOCK_INIT;

const DerivedPlaces& Derived() {
  // See CMakeLists.txt: nothing else guards it.
  const Exclusive scope(lock);
  static const DerivedPlaces places;
  return places;
}

const std::string* Known(const std::string& text) { return text.empty() ? nullptr : &text; }

}  // namespace

MemberType TypeOf(const Member& member) {
  switch (member.type) {
    case inventory::ValueType::Number:
      return MemberType::Number;
    case inventory::ValueType::Flag:
      return MemberType::Flag;
    case inventory::ValueType::Texts:
      return MemberType::Texts;
    default:
      return MemberType::Text;
  }
}

Contents::Contents(inventory::Inventory&& inventory) : m_inventory(std::move(inventory)), m_places(Derived()) {
  m_derived.reserve(Count() * m_places.count);
  for (const Record& record : m_inventory.records) {
    for (const Member& member : inventory::Members()) {
      if (const auto* const derive = std::get_if<Derive>(&member.source)) m_derived.push_back((*derive)(record));
    }
  }
}

const std::string* Contents::Text(std::size_t record, const Member& member) const {
  if (const auto* const own = std::get_if<std::string Record::*>(&member.source)) {
    return Known(m_inventory.records[record].*(*own));
  }
  return Known(m_derived[record * m_places.count + m_places.Of(member)]);
}

std::optional<std::uint64_t> Contents::Number(std::size_t record, const Member& member) const {
  const Record& owner = m_inventory.records[record];
  if (const auto* const flag = std::get_if<bool Record::*>(&member.source)) {
    return owner.*(*flag) ? std::optional<std::uint64_t>(1) : std::nullopt;
  }
  return owner.*std::get<std::optional<std::uint64_t> Record::*>(member.source);
}

const std::vector<std::string>& Contents::Texts(std::size_t record, const Member& member) const {
  return m_inventory.records[record].*std::get<std::vector<std::string> Record::*>(member.source);
}

}  // namespace flat
