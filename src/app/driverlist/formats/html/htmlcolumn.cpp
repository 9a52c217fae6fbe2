#include "formats/html/htmlcolumn.h"

#include <array>

namespace driverlist {

using inventory::Column;
using inventory::ValueType;

std::string LabelOf(const Column& column) {
  return std::string(column.label) + (column.type == ValueType::Time ? ", UTC" : "");
}

std::string_view KindOf(ValueType type) {
  switch (type) {
    case ValueType::Version:
      return "version";
    case ValueType::Number:
      return "number";
    case ValueType::Time:
    case ValueType::Date:
      return "time";
    case ValueType::Text:
    case ValueType::Flag:
    case ValueType::Texts:
    case ValueType::Known:
      break;
  }
  return "text";
}

std::string StyleOf(const Column& column) {
  if (column.type == ValueType::Texts) return "texts";
  if (column.keepsEnd) return "place";
  const std::string_view kind = KindOf(column.type);
  return kind == "text" ? std::string() : std::string(kind);
}

std::string_view NameOf(Tone tone) {
  constexpr std::array<std::string_view, 4> names = {"", "good", "doubtful", "bad"};
  return names[static_cast<std::size_t>(tone)];
}

}  // namespace driverlist
