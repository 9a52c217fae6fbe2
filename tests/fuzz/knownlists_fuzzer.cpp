// Lists of known drivers of any content: read whole or refused, and what was read can be written and read again.
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "trust/knownlists.h"

namespace {

std::string Compact(const std::string& text) {
  std::stringbuf buffer(text, std::ios_base::in);
  trust::KnownContent content = trust::ReadKnownList(buffer);
  trust::KnownDrivers known;
  known.Add(std::move(content.lists), std::move(content.entries));
  return trust::CompactList(known);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string compact;
  try {
    compact = Compact(std::string(reinterpret_cast<const char*>(data), size));
  } catch (const trust::InputProblem& problem) {
    // It continues a sentence.
    if (problem.what()[0] == '\0') std::abort();
    return 0;
  }
  // Texts that are not UTF-8 come back as others once, and stay.
  try {
    const std::string again = Compact(compact);
    if (Compact(again) != again) std::abort();
  } catch (const trust::InputProblem&) {
    std::abort();
  }
  return 0;
}
