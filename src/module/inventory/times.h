/// @file
/// Times of the documents as numbers.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace inventory {

/// Seconds from the beginning of 1970 to `time`, "2024-05-06T07:08:09Z" or the day "2024-05-06", UTC. Nullopt for any
/// other text.
std::optional<std::int64_t> SecondsOf(std::string_view time);

}  // namespace inventory
