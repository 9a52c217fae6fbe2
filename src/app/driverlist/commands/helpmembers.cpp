#include "commands/helpmembers.h"

#include <algorithm>

#include "commands/checks.h"
#include "commands/columns.h"
#include "formats/rows.h"
#include "inventory/listing.h"
#include "inventory/memberdescriptions.h"

namespace driverlist {
namespace {

/// What the other columns of the table need at most, with the gaps.
constexpr std::size_t WidthOfNames = 45;
constexpr std::size_t Narrowest = 20;

std::string Paragraph(const std::string& text, std::size_t width) {
  std::string lines;
  for (const std::string& line : Wrapped(text, width)) lines += line + "\n";
  return lines;
}

std::vector<std::vector<TextCell>> Rows(std::size_t room) {
  std::vector<std::vector<TextCell>> rows;
  for (const inventory::MemberDescription& member : inventory::MemberDescriptions()) {
    const inventory::ValueType type = inventory::FindMember(member.name)->type;
    std::vector<TextCell> row = {
        {std::string(member.name)}, {std::string(inventory::TypeName(type))}, {inventory::KindsText(member)}, {}};
    for (const std::string& line : Wrapped(std::string(member.meaning), room)) {
      row.back().text = line;
      rows.push_back(row);
      row = {{}, {}, {}, {}};
    }
  }
  return rows;
}

}  // namespace

std::string MembersHelp(std::size_t width) {
  const std::size_t room = std::max(width, WidthOfNames + Narrowest) - WidthOfNames;
  return FormatRows({{"member"}, {"type"}, {"of"}, {"what"}}, Rows(room), Page()) + "\n" +
         Paragraph(
             "Versions, numbers, times and dates can be compared with <, <=, > and >=. \"driverlist help list\" says "
             "how.",
             width) +
         "\n" + Paragraph("With --mode: " + Joined(ColumnNames(ColumnsOf(inventory::ListingMode::All))) + ".", width);
}

}  // namespace driverlist
