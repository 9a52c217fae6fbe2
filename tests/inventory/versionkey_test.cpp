#include "inventory/versionkey.h"

#include <gtest/gtest.h>

#include <cctype>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "inventory/listing.h"

using inventory::IsOlder;
using inventory::VersionKey;

namespace {

TEST(VersionKey, IsMadeOfTheComponents) {
  EXPECT_EQ(VersionKey("10.0.22621.1137"), "c10af22621e1137");
  EXPECT_EQ(VersionKey("007.0a.FF"), "b7bacff");
  EXPECT_EQ(VersionKey(""), "!");
  EXPECT_EQ(VersionKey("1..2 "), "b1!b2!");
  EXPECT_EQ(VersionKey("1.2 Beta"), "b1b2~beta ");
  EXPECT_EQ(VersionKey("-1.0x10"), "\"-1 ~0x10 ");
  EXPECT_EQ(VersionKey("N/A"), "~n/a ");
}

TEST(VersionKey, TakesNumbersUpTo63Bits) {
  EXPECT_EQ(VersionKey("7fffffffffffffff"), "q7fffffffffffffff");
  EXPECT_EQ(VersionKey("8000000000000000"), "~8000000000000000 ");
  EXPECT_EQ(VersionKey("00000000000000000000000001"), "b1");
}

/// An independent reading of what a component is: whether it is a number of up to 63 bits.
bool IsNumber(const std::string& component) {
  std::size_t digits = 0;
  bool isLarge = false;
  for (const char c : component) {
    if (std::isxdigit(static_cast<unsigned char>(c)) == 0) return false;
    if (digits > 0 || c != '0') ++digits;
    if (digits == 1 && c > '7') isLarge = true;
  }
  return !component.empty() && (digits < 16 || (digits == 16 && !isLarge));
}

std::vector<std::string> Components(const std::string& version) {
  std::vector<std::string> components(1);
  for (const char c : version) {
    if (c == '.' || c == ' ') {
      components.emplace_back();
    } else {
      components.back() += c;
    }
  }
  return components;
}

/// Where a number meets a text, the library's order runs in circles; an empty component is before both.
bool AreComparable(const std::string& a, const std::string& b) {
  const auto componentsA = Components(a);
  const auto componentsB = Components(b);
  for (std::size_t i = 0; i < std::min(componentsA.size(), componentsB.size()); ++i) {
    if (componentsA[i].empty() || componentsB[i].empty()) continue;
    if (IsNumber(componentsA[i]) != IsNumber(componentsB[i])) return false;
  }
  return true;
}

class Versions {
 public:
  std::string Any() {
    static const std::string alphabets[] = {"0123456789", "0123456789abcdefABCDEF", "0123456789abcdefgxzXZ-+,~_/"};
    const std::string& alphabet = alphabets[Below(3)];
    std::string version;
    for (std::size_t count = 1 + Below(5); count > 0; --count) {
      for (std::size_t size = Below(Below(9) != 0 ? 6 : 19); size > 0; --size)
        version += alphabet[Below(alphabet.size())];
      if (count > 1) version += Below(20) != 0 ? '.' : ' ';
    }
    return version;
  }

  /// Half of them differ from `version` in one character.
  std::string Other(const std::string& version) {
    if (version.empty() || Below(2) != 0) return Any();
    std::string other = version;
    other[Below(other.size())] = "0123456789abcdefF.g"[Below(19)];
    return other;
  }

 private:
  std::size_t Below(std::size_t limit) { return m_random() % limit; }

  std::mt19937 m_random{1};
};

int Order(const std::string& a, const std::string& b) { return IsOlder(a, b) ? -1 : IsOlder(b, a) ? 1 : 0; }

int KeyOrder(const std::string& a, const std::string& b) {
  const int order = VersionKey(a).compare(VersionKey(b));
  return (order > 0) - (order < 0);
}

TEST(VersionKey, HasTheLibrarysOrderInAMillionPairs) {
  Versions versions;
  int wrong = 0;
  int older = 0;
  for (int compared = 0; compared < 1'000'000 && wrong < 10;) {
    const std::string a = versions.Any();
    const std::string b = versions.Other(a);
    if (!AreComparable(a, b)) continue;
    ++compared;
    const int order = Order(a, b);
    older += order < 0 ? 1 : 0;
    if (KeyOrder(a, b) != order) {
      ++wrong;
      ADD_FAILURE() << a << " | " << b << ": " << order;
    }
  }
  EXPECT_GT(older, 100'000);
}

}  // namespace
