/// @file
/// A match of an image in a list of known drivers.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace trust {

enum class Category { Vulnerable, Malicious };

/// "vulnerable" or "malicious".
std::string_view NameOf(Category category);

/// The category of that name.
std::optional<Category> CategoryNamed(std::string_view name);

/// The kinds of matches, the surest first.
enum class MatchKind { FileHash, ImageHash, SignerRule, NameAndVersion };

/// "file-hash", "image-hash", "signer-rule" or "name-and-version".
std::string_view NameOf(MatchKind kind);

/// The kind of that name.
std::optional<MatchKind> MatchKindNamed(std::string_view name);

/// One matching entry. Texts are UTF-8.
struct KnownMatch {
  std::string list;
  std::string entry;
  std::string name;
  Category category = Category::Vulnerable;
  MatchKind kind = MatchKind::NameAndVersion;
  std::vector<std::string> cves;

  bool operator==(const KnownMatch& other) const {
    return std::tie(list, entry, name, category, kind, cves) ==
           std::tie(other.list, other.entry, other.name, other.category, other.kind, other.cves);
  }
};

}  // namespace trust
