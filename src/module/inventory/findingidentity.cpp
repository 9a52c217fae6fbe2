#include "inventory/findingidentity.h"

#include "platform/encoding.h"
#include "trust/digest.h"

namespace inventory {
namespace {

/// 80 bits: too many to search for a driver that takes the identity of an accepted finding.
constexpr std::size_t Digits = 20;

/// Each text behind its length, so that no two lists of texts read the same.
std::string TextOf(std::string_view rule, const std::vector<std::string>& state) {
  std::string all(rule);
  for (const std::string& part : state) {
    const std::string lower = Orvane::LowerCase(part);
    all += " " + std::to_string(lower.size()) + ":" + lower;
  }
  return all;
}

}  // namespace

std::string FindingIdentities::Next(std::string_view rule, const std::vector<std::string>& state) {
  std::string text = TextOf(rule, state);
  const unsigned before = m_seen[text]++;
  if (before > 0) text += " again " + std::to_string(before);
  const std::string digest = trust::Hex(trust::DigestOf(trust::DigestAlgorithm::Sha256, text));
  return digest.empty() ? std::string() : std::string(rule) + "-" + digest.substr(0, Digits);
}

}  // namespace inventory
