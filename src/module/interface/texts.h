/// @file
/// Texts that the library hands to hosts, to be freed by it.
#pragma once

#include <string>

namespace flat {

/// A copy of `text` that ends with a zero, until it is freed. Throws std::bad_alloc.
char* HandOut(const std::string& text);

/// Frees what HandOut() gave. Throws Failure for anything else.
void TakeBack(char* text);

}  // namespace flat
