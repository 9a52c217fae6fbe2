#include "formats.h"

namespace driverlist {
namespace {

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

template <typename TextOf>
std::string Record(const std::vector<Column>& columns, TextOf textOf) {
  std::string line;
  for (const Column& column : columns) {
    if (&column != &columns.front()) line += ',';
    line += FieldText(textOf(column));
  }
  // A lone empty field would make an empty line, which many readers take for none.
  return (line.empty() ? Quoted(line) : line) + "\r\n";
}

}  // namespace

std::string FormatCsv(const std::vector<Orvane::DriverData>& drivers, const std::vector<Column>& columns) {
  std::string csv = Record(columns, [](const Column& column) { return std::string(column.name); });
  for (const Orvane::DriverData& driver : drivers) {
    csv += Record(columns, [&driver](const Column& column) { return ColumnText(driver, column); });
  }
  return csv;
}

}  // namespace driverlist
