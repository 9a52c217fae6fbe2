#include "formats/diffparagraphs.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "formats/emphasis.h"
#include "formats/layout.h"
#include "formats/tone.h"
#include "formats/wrapped.h"
#include "terminal/text.h"

namespace driverlist {
namespace {

using inventory::Change;
using inventory::Difference;
using inventory::DifferenceKind;

constexpr std::size_t Indent = 2;
/// Values that have less room than this beside the names of their members go below them.
constexpr std::size_t Beside = 20;

/// What happened to which record; only the former is coloured.
std::string Heading(const Difference& difference, std::size_t indent, const Page& page) {
  const std::string what(DifferenceName(difference.kind));
  const inventory::Record& record = difference.Latest();
  std::string text = Paragraph(what + " " + std::string(KindName(record.kind)) + " " + record.name, page.width, indent);
  // The page may be too narrow for that word alone.
  if (text.compare(indent, what.size(), what) == 0) {
    text.replace(indent, what.size(), Toned(what, ToneOf(difference.kind), page));
  }
  return text;
}

/// "old -> new", indented by `begin` blanks; if that is too long, the new value has lines of its own. For a record that
/// was added or removed, its only value.
std::string ValuesText(const Change& change, bool isOfOneInventory, std::size_t begin, const Page& page) {
  constexpr std::string_view arrow = "-> ";
  const std::string before = inventory::TextOf(change.before);
  const std::string after = inventory::TextOf(change.after);
  if (isOfOneInventory) return Paragraph(before + after, page.width, begin);
  if (after.empty()) return Paragraph(before + " ->", page.width, begin);
  const std::string both = before + (before.empty() ? "" : " ") + std::string(arrow) + after;
  if (begin + Columns(Visible(both)) <= page.width) return Paragraph(both, page.width, begin);
  return (before.empty() ? "" : Paragraph(before, page.width, begin)) +
         Paragraph(after, page.width, begin + arrow.size()).replace(begin, arrow.size(), arrow);
}

/// A line for each change, or several if it is too long.
std::string ChangesText(const Difference& difference, std::size_t indent, const Page& page) {
  const std::vector<Change> changes = ChangesOf(difference);
  std::size_t begin = 0;
  for (const Change& change : changes) begin = std::max(begin, indent + change.member->name.size() + ColumnGap);
  const bool areBeside = page.width >= begin + Beside;
  if (!areBeside) begin = indent + Indent;
  const bool isOfOneInventory = difference.before == nullptr || difference.after == nullptr;
  std::string text;
  for (const Change& change : changes) {
    const std::string name(change.member->name);
    std::string lines = ValuesText(change, isOfOneInventory, begin, page);
    text += areBeside ? lines.replace(indent, name.size(), name) : Paragraph(name, page.width, indent) + lines;
  }
  return text;
}

}  // namespace

std::string DifferencesAsParagraphs(const inventory::Comparison& comparison, const Page& page) {
  std::string text;
  std::size_t group = 0;
  for (const Difference& difference : comparison.differences) {
    const std::size_t indent = difference.group == group ? Indent : 0;
    group = difference.group;
    text += Heading(difference, indent, page) + ChangesText(difference, indent + Indent, page);
  }
  return text;
}

}  // namespace driverlist
