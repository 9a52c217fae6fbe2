#include "inventory/findingidentity.h"

#include "platform/encoding.h"
#include "trust/digest.h"

namespace inventory {
namespace {

/// 80 bits: too many for anyone to build a driver whose finding has the identity of an accepted one.
constexpr std::size_t Digits = 20;

/// Each text follows its length, so that no two lists give the same result.
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
