#include "trust/knownmatch.h"

#include <array>

namespace trust {
namespace {

constexpr std::array<std::string_view, 2> CategoryNames = {"vulnerable", "malicious"};
constexpr std::array<std::string_view, 4> KindNames = {"file-hash", "image-hash", "signer-rule", "name-and-version"};

template <typename Value, std::size_t Count>
std::optional<Value> Named(const std::array<std::string_view, Count>& names, std::string_view name) {
  for (std::size_t i = 0; i < Count; ++i) {
    if (names[i] == name) return static_cast<Value>(i);
  }
  return std::nullopt;
}

}  // namespace

std::string_view NameOf(Category category) { return CategoryNames[static_cast<std::size_t>(category)]; }
std::optional<Category> CategoryNamed(std::string_view name) { return Named<Category>(CategoryNames, name); }

std::string_view NameOf(MatchKind kind) { return KindNames[static_cast<std::size_t>(kind)]; }
std::optional<MatchKind> MatchKindNamed(std::string_view name) { return Named<MatchKind>(KindNames, name); }

}  // namespace trust
