/// @file
/// What can be wrong with the value of an option. A check returns what, in words that go on behind the option's name,
/// or an empty text.
#pragma once

#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace driverlist {

class Check {
 public:
  /// `check` returns what is wrong with a value.
  template <typename Function, typename = std::enable_if_t<std::is_invocable_r_v<std::string, Function, std::string>>>
  Check(Function check) : m_check(std::move(check)) {}  // NOLINT(google-explicit-constructor): a function is a check.

  /// Of the same check, which takes no value but these, for completion.
  Check Offering(std::vector<std::string> choices) const;

  std::string operator()(const std::string& value) const { return m_check(value); }
  const std::vector<std::string>& Choices() const { return m_choices; }

 private:
  std::function<std::string(const std::string& value)> m_check;
  std::vector<std::string> m_choices;
};

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

/// A whole number from 1.
Check Count();

/// A SHA-256 in hexadecimal digits, in either case.
Check Digest();

}  // namespace driverlist
