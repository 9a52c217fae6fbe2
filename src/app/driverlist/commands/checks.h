/// @file
/// Checks of option values. A check returns what is wrong with a value, in words that continue after the name of the
/// option, or an empty text.
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

  /// The only values that the check accepts, for completion.
  Check Offering(std::vector<std::string> choices) const;

  std::string operator()(const std::string& value) const { return m_check(value); }
  const std::vector<std::string>& Choices() const { return m_choices; }

 private:
  std::function<std::string(const std::string& value)> m_check;
  std::vector<std::string> m_choices;
};

/// "a, b, c".
std::string Joined(const std::vector<std::string>& names);

/// "a,b,c" as three texts. An empty text gives one empty text.
std::vector<std::string> SplitAtCommas(const std::string& text);

/// One of `names`.
Check OneOf(std::vector<std::string> names);

/// One of `names`, which are what is called `what`. For another name, the nearest is offered, or all.
Check Named(const std::string& what, std::vector<std::string> names);

/// Some of `names`, joined by commas, each once.
Check SomeOf(std::vector<std::string> names);

/// Not empty; `what` names the value in the sentence.
Check NotEmpty(const std::string& what);

/// A whole number from 1.
Check Count();

/// A SHA-256 in hexadecimal digits, in upper or lower case.
Check Digest();

}  // namespace driverlist
