/// @file
/// Short JSON texts that are held whole: what people write for the program.
#pragma once

#include <cstddef>
#include <streambuf>
#include <string>
#include <string_view>

#include "inventory/json.h"

namespace inventory {

/// How many values, arrays and objects among them, such a text may have.
constexpr std::size_t MostTreeValues = 20'000;

/// How many bytes its names and texts may have in all.
constexpr std::size_t MostTreeBytes = 1 << 20;

/// Reads one JSON text from beginning to end, within the limits of ReadJson() and those above. A number that is not
/// whole or less than 0 becomes a floating-point number without meaning. Throws InputProblem, also where an object has
/// a member twice: readers disagree about what that means.
Json ReadJsonTree(std::streambuf& text);

/// `pointer` (RFC 6901) of an object, continued to its member `name`; of an array, to its element `index`.
std::string PointerTo(const std::string& pointer, std::string_view name);
std::string PointerTo(const std::string& pointer, std::size_t index);

}  // namespace inventory
