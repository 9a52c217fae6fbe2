/// @file
/// Colour codes for a terminal that shows them.
#pragma once

#include <string>

#include "formats/tone.h"
#include "terminal/page.h"

namespace driverlist {

/// `text` in the colour of `tone`; as it is where that is plain, on a page without colours, and when it is empty.
std::string Toned(const std::string& text, Tone tone, const Page& page);

/// `text` in bold; as it is on a page without colours, and when it is empty.
std::string Bold(const std::string& text, const Page& page);

}  // namespace driverlist
