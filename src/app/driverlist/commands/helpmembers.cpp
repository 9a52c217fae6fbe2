#include "commands/helpmembers.h"

#include <algorithm>

#include "commands/checks.h"
#include "commands/columns.h"
#include "formats/rowlines.h"
#include "formats/rows.h"
#include "formats/wrapped.h"
#include "inventory/listing.h"
#include "inventory/memberdescriptions.h"

namespace driverlist {
namespace {

/// The most that the other columns of the table need, with the gaps.
constexpr std::size_t WidthOfNames = 45;
constexpr std::size_t Narrowest = 20;

/// The width of meanings, which continue below; 0 for as much as they need.
TextRows Rows(std::size_t room) {
  TextRows rows;
  for (const inventory::MemberDescription& member : inventory::MemberDescriptions()) {
    const inventory::ValueType type = inventory::FindMember(member.name)->type;
    std::vector<TextCell> row = {
        {std::string(member.name)}, {std::string(inventory::TypeName(type))}, {inventory::KindsText(member)}, {}};
    const std::string meaning(member.meaning);
    for (const std::string& line : room > 0 ? Wrapped(meaning, room) : std::vector{meaning}) {
      row.back().text = line;
      rows.push_back(row);
      row = {{}, {}, {}, {}};
    }
  }
  return rows;
}

}  // namespace

std::string MembersHelp(std::size_t width) {
  const bool isNarrow = width < WidthOfNames + Narrowest;
  const std::vector<RowColumn> columns = {{"member"}, {"type"}, {"of"}, {"what"}};
  const std::string members =
      isNarrow ? RowLines(columns, Rows(0), {width, false}) : FormatRows(columns, Rows(width - WidthOfNames), Page());
  return members + "\n" +
         Paragraph(
             "Versions, numbers, times and dates can be compared with <, <=, > and >=. \"driverlist help list\" says "
             "how.",
             width) +
         "\n" + Paragraph("With --mode: " + Joined(ColumnNames(ColumnsOf(inventory::ListingMode::All))) + ".", width);
}

}  // namespace driverlist
