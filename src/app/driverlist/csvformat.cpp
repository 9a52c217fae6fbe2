#include "formats.h"

namespace driverlist {
namespace {

void AppendField(std::string& line, const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) {
    line += text;
    return;
  }
  line += '"';
  for (const char c : text) {
    if (c == '"') line += '"';
    line += c;
  }
  line += '"';
}

template <typename TextOf>
std::string Record(const std::vector<Column>& columns, TextOf textOf) {
  std::string line;
  for (const Column& column : columns) {
    if (&column != &columns.front()) line += ',';
    AppendField(line, textOf(column));
  }
  return line + "\r\n";
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
