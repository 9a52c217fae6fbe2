#include "commands/checks.h"

#include <algorithm>
#include <set>
#include <utility>

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

Check OneOf(std::vector<std::string> names) {
  return [names = std::move(names)](const std::string& value) {
    const bool isKnown = std::find(names.begin(), names.end(), value) != names.end();
    return isKnown ? std::string() : "\"" + value + "\" is none of " + Joined(names);
  };
}

Check SomeOf(std::vector<std::string> names) {
  return [isOneOf = OneOf(std::move(names))](const std::string& value) {
    std::set<std::string> found;
    for (const std::string& part : SplitAtCommas(value)) {
      const std::string problem = isOneOf(part);
      if (!problem.empty()) return problem;
      if (!found.insert(part).second) return "\"" + part + "\" is named twice";
    }
    return std::string();
  };
}

Check NotEmpty(const std::string& what) {
  return [what](const std::string& value) { return value.empty() ? "the " + what + " is empty" : std::string(); };
}

}  // namespace driverlist
