/// @file
/// Texts that the library passes to hosts and frees later.
#pragma once

#include <string>

namespace flat {

/// A copy of `text` that ends with a zero and lives until it is freed. Throws std::bad_alloc.
char* HandOut(const std::string& text);

/// Frees a text that HandOut() returned. Throws Failure for anything else.
void TakeBack(char* text);

}  // namespace flat
