#include "commands/checks.h"

#include <algorithm>
#include <set>
#include <utility>

#include "inventory/nearestname.h"

namespace driverlist {

std::string Joined(const std::vector<std::string>& names) {
  std::string joined;
  for (const std::string& name : names) joined += (joined.empty() ? "" : ", ") + name;
  return joined;
}

std::vector<std::string> SplitAtCommas(const std::string& text) {
  std::vector<std::string> parts(1);
  for (const char c : text) {
    if (c == ',') {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  return parts;
}

Check Check::Offering(std::vector<std::string> choices) const {
  Check check = *this;
  check.m_choices = std::move(choices);
  return check;
}

Check OneOf(std::vector<std::string> names) {
  const Check check = [names](const std::string& value) {
    const bool isKnown = std::find(names.begin(), names.end(), value) != names.end();
    return isKnown ? std::string() : "\"" + value + "\" is not one of " + Joined(names);
  };
  return check.Offering(std::move(names));
}

Check Named(const std::string& what, std::vector<std::string> names) {
  const Check check = [what, names](const std::string& value) {
    if (std::find(names.begin(), names.end(), value) != names.end()) return std::string();
    const std::string_view nearest = inventory::NearestName(value, {names.begin(), names.end()});
    return "there is no " + what + " \"" + value + "\"; " +
           (nearest.empty() ? "there are " + Joined(names) : "did you mean \"" + std::string(nearest) + "\"?");
  };
  return check.Offering(std::move(names));
}

Check SomeOf(std::vector<std::string> names) {
  const Check check = [isOneOf = OneOf(names)](const std::string& value) {
    std::set<std::string> found;
    for (const std::string& part : SplitAtCommas(value)) {
      std::string problem = isOneOf(part);
      if (!problem.empty()) return problem;
      if (!found.insert(part).second) return "\"" + part + "\" is named twice";
    }
    return std::string();
  };
  return check.Offering(std::move(names));
}

Check NotEmpty(const std::string& what) {
  return [what](const std::string& value) { return value.empty() ? "the " + what + " is empty" : std::string(); };
}

Check Count() {
  return [](const std::string& value) {
    constexpr std::size_t mostDigits = 9;
    const bool isNumber = !value.empty() && value.find_first_not_of("0123456789") == std::string::npos;
    const bool isCount = isNumber && value.size() <= mostDigits && value.find_first_not_of('0') != std::string::npos;
    return isCount ? std::string() : "\"" + value + "\" is not a number from 1 to 999999999";
  };
}

Check Digest() {
  return [](const std::string& value) {
    const bool isDigest = value.size() == 64 && value.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
    return isDigest ? std::string() : "\"" + value + "\" is not a digest of 64 hexadecimal digits";
  };
}

}  // namespace driverlist
