/// @file
/// What can be wrong with the value of an option. A check returns what, in words that go on behind the option's name,
/// or an empty text.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace driverlist {

using Check = std::function<std::string(const std::string& value)>;

/// "a, b, c".
std::string Joined(const std::vector<std::string>& names);

/// "a,b,c" as three texts. One text, an empty one, for an empty one.
std::vector<std::string> SplitAtCommas(const std::string& text);

/// One of `names`.
Check OneOf(std::vector<std::string> names);

/// Some of `names`, joined by commas, each once.
Check SomeOf(std::vector<std::string> names);

/// Not empty; `what` it is called then.
Check NotEmpty(const std::string& what);

}  // namespace driverlist
