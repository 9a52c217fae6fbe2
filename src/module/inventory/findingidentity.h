/// @file
/// By what a finding is recognised from one examination to the next.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace inventory {

/// Makes the identities of the findings of one examination, each of them once.
class FindingIdentities {
 public:
  /// "unused-package-1f2e3d4c5b6a79880123": the rule and the beginning of a digest of `state`, whose texts say which
  /// thing it is and what is wrong with it. The case of letters does not count, since Windows ignores it in names,
  /// paths and versions. Where several findings have the same rule and state, each gets an identity of its own, in the
  /// order of the calls. Empty where the platform cannot compute a digest.
  std::string Next(std::string_view rule, const std::vector<std::string>& state);

 private:
  /// How often a state was seen, by its text.
  std::map<std::string, unsigned> m_seen;
};

}  // namespace inventory
