/// @file
/// What was found, row by row: its subject and the evidence.
#pragma once

#include <string>
#include <vector>

#include "formats/tone.h"
#include "terminal/page.h"

namespace driverlist {

/// Texts are UTF-8 of any origin.
struct EvidenceRow {
  std::string subject;
  std::string evidence;
  /// What to do about it; may be empty.
  std::string nextStep = {};
};

/// A line of titles and for each row its subject, in `tone`, with the evidence beside it and the next step below that.
/// Texts that are too long for the page go on in lines of their own. If the page is too narrow, the rest is below the
/// subjects, without titles. Nothing is cut.
std::string FormatEvidence(const std::vector<EvidenceRow>& rows, Tone tone, const Page& page);

}  // namespace driverlist
