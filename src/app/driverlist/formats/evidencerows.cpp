#include "formats/evidencerows.h"

#include <algorithm>
#include <cstddef>

#include "formats/emphasis.h"
#include "formats/layout.h"
#include "formats/rows.h"
#include "formats/wrapped.h"
#include "terminal/text.h"

namespace driverlist {
namespace {

using EvidenceRows = std::vector<EvidenceRow>;

std::string NextStep(const EvidenceRow& row) { return "next: " + row.nextStep; }

/// The columns of a page that the longest subject takes, with the gap after it.
std::size_t WidthOfSubjects(const EvidenceRows& rows) {
  std::size_t width = 0;
  for (const EvidenceRow& row : rows) width = std::max(width, Columns(Visible(row.subject)));
  return width + ColumnGap;
}

/// In less room, evidence would be a column of single words. On a page of 40 columns, none stands beside its subject,
/// so that all of a report looks alike.
constexpr std::size_t Readable = 38;

std::string AsTable(const EvidenceRows& rows, Tone tone, const Page& page) {
  const std::size_t room = page.width == 0 ? 0 : page.width - WidthOfSubjects(rows);
  TextRows lines;
  for (const EvidenceRow& row : rows) {
    std::string subject = row.subject;
    const auto add = [&](const std::string& text) {
      for (const std::string& piece : room > 0 ? Wrapped(text, room) : std::vector{text}) {
        lines.push_back({{subject, tone, true}, {piece}});
        subject.clear();
      }
    };
    add(row.evidence);
    if (!row.nextStep.empty()) add(NextStep(row));
  }
  return FormatRows({{"what"}, {"evidence"}}, std::move(lines), page);
}

/// Each subject with the evidence and the next step below it.
std::string AsParagraphs(const EvidenceRows& rows, Tone tone, const Page& page) {
  constexpr std::size_t indent = 2;
  std::string text;
  for (const EvidenceRow& row : rows) {
    for (const std::string& piece : Wrapped(row.subject, page.width)) text += Toned(piece, tone, page) + "\n";
    text += Paragraph(row.evidence, page.width, indent);
    if (!row.nextStep.empty()) text += Paragraph(NextStep(row), page.width, indent);
  }
  return text;
}

}  // namespace

std::string FormatEvidence(const EvidenceRows& rows, Tone tone, const Page& page) {
  const bool isNarrow = page.width > 0 && page.width < WidthOfSubjects(rows) + Readable;
  return isNarrow ? AsParagraphs(rows, tone, page) : AsTable(rows, tone, page);
}

}  // namespace driverlist
