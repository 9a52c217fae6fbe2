/// @file
/// A sentence for each code of a signature.
#pragma once

#include <cstdint>
#include <string>

namespace trust {

/// The system's sentence for `code`; one of ours where the system has none. UTF-8.
std::string SentenceFor(std::uint32_t code);

}  // namespace trust
