#include "inventory/patterns.h"

#include <gtest/gtest.h>

using namespace inventory;

namespace {

bool Matches(const std::string& text, const char* pattern) { return Pattern(pattern).Matches(std::string_view(text)); }

bool IsFound(const char* text, const std::string& searched) {
  return Pattern::Search(text).Matches(std::string_view(searched));
}

TEST(Pattern, IsForTheWholeText) {
  EXPECT_TRUE(Matches("nlnet.sys", "nlnet.sys"));
  EXPECT_FALSE(Matches("nlnet.sys", "nlnet"));
  EXPECT_FALSE(Matches("nlnet", "nlnet.sys"));
  EXPECT_TRUE(Matches("", ""));
  EXPECT_FALSE(Matches("a", ""));
  EXPECT_FALSE(Matches("", "a"));
}

TEST(Pattern, HasAStarForAnyCharacters) {
  for (const char* const pattern : {"*", "nl*", "*.sys", "*net*", "n*t*s", "**nlnet.sys**", "nlnet.sys*"}) {
    EXPECT_TRUE(Matches("nlnet.sys", pattern)) << pattern;
  }
  for (const char* const pattern : {"*x*", "net*", "*net", "n*x*s", "*nlnet.sys*s"}) {
    EXPECT_FALSE(Matches("nlnet.sys", pattern)) << pattern;
  }
  EXPECT_TRUE(Matches("abababac", "*abac")) << "the last place is the one";
  EXPECT_TRUE(Matches("", "*"));
}

TEST(Pattern, HasAQuestionMarkForOneCharacter) {
  EXPECT_TRUE(Matches("oem1.inf", "oem?.inf"));
  EXPECT_FALSE(Matches("oem12.inf", "oem?.inf"));
  EXPECT_FALSE(Matches("oem.inf", "oem?.inf"));
  EXPECT_FALSE(Matches("", "?"));
  EXPECT_TRUE(Matches("Ger\u00E4t \u4E2D", "ger?t ?")) << "a character has as many bytes as it has";
  EXPECT_TRUE(Matches("\u00E4\u00E4b", "*?b"));
}

TEST(Pattern, DoesNotLookAtCase) {
  EXPECT_TRUE(Matches("ACPI.sys", "acpi.SYS"));
  EXPECT_TRUE(Matches("GER\u00C4T \u0416", "ger\u00E4t \u0436"));
}

TEST(Pattern, TakesNoTimeForManyStars) { EXPECT_FALSE(Matches(std::string(5000, 'a'), "*a*a*a*a*a*a*a*a*a*a*a*a*b")); }

TEST(Pattern, OfASearchIsForAnyPartOfAText) {
  EXPECT_TRUE(IsFound("NET", "nlnet.sys"));
  EXPECT_TRUE(IsFound("nlnet.sys", "nlnet.sys"));
  EXPECT_TRUE(IsFound("\u0416", "\u0442\u0436.sys"));
  EXPECT_FALSE(IsFound("net.", "nlnet sys"));
}

TEST(Pattern, OfASearchWithWildcardsIsForTheWholeText) {
  EXPECT_TRUE(IsFound("*net*", "nlnet.sys"));
  EXPECT_TRUE(IsFound("oem?.inf", "oem1.inf"));
  EXPECT_FALSE(IsFound("net*", "nlnet.sys"));
  EXPECT_FALSE(IsFound("oem?", "oem1.inf"));
}

TEST(Pattern, MatchesOneOfSeveralTexts) {
  const Value files = std::vector<std::string>{"a.sys", "b.dll"};
  EXPECT_TRUE(Pattern("B.DLL").Matches(files));
  EXPECT_TRUE(Pattern("a*").Matches(files));
  EXPECT_FALSE(Pattern("a*dll").Matches(files)) << "they are not one text";
  EXPECT_FALSE(Pattern("").Matches(files));
}

TEST(Pattern, TakesNumbersAndFlagsForTexts) {
  EXPECT_TRUE(Pattern("10?4").Matches(Value(std::uint64_t{1024})));
  EXPECT_TRUE(Pattern("True").Matches(Value(true)));
  EXPECT_TRUE(Pattern("").Matches(Value()));
  EXPECT_FALSE(Pattern("?*").Matches(Value()));
}

}  // namespace
