/// @file
/// A sentence for each code of a signature.
#pragma once

#include <cstdint>
#include <string>

namespace trust {

/// The system's message for `code`, or a sentence of our own if the system has no message. UTF-8.
std::string SentenceFor(std::uint32_t code);

}  // namespace trust
