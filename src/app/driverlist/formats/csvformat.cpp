#include <string_view>
#include <variant>

#include "formats/formats.h"

namespace driverlist {
namespace {

constexpr char ByteOrderMark[] = "\xEF\xBB\xBF";

std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + "\"";
}

std::string FieldText(const std::string& text) {
  return text.find_first_of(",\"\r\n") == std::string::npos ? text : Quoted(text);
}

bool IsText(const inventory::Value& value) {
  return !std::holds_alternative<std::uint64_t>(value) && !std::holds_alternative<bool>(value);
}

/// A spreadsheet evaluates a field that begins like this, even within quotation marks. After an apostrophe, it shows
/// the field as text.
bool LooksLikeFormula(const std::string& text) {
  constexpr std::string_view beginnings = "=+-@\t\r";
  return !text.empty() && beginnings.find(text.front()) != std::string_view::npos;
}

std::string TextOf(const Cell& cell, const CsvStyle& style) {
  std::string text = inventory::TextOf(cell.value);
  if (!style.isRaw && IsText(cell.value) && LooksLikeFormula(text)) text.insert(text.begin(), '\'');
  return text;
}

/// A record with a field for each of `items`, as `text` returns it.
template <typename Items, typename Text>
std::string Record(const Items& items, Text text) {
  std::string line;
  for (const auto& item : items) line += (&item == &items.front() ? "" : ",") + FieldText(text(item));
  // A lone empty field would make an empty line, which many readers skip.
  return (line.empty() ? Quoted(line) : line) + "\r\n";
}

}  // namespace

std::string FormatCsv(const Table& table, const CsvStyle& style) {
  std::string csv = style.hasBom ? ByteOrderMark : "";
  csv += Record(table.columns, [](const inventory::Column& column) { return std::string(column.name); });
  for (const auto& row : table.rows) {
    csv += Record(row, [&style](const Cell& cell) { return TextOf(cell, style); });
  }
  return csv;
}

}  // namespace driverlist
