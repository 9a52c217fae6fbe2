#include "inventory/ignoringcase.h"

#include <gmock/gmock.h>

#include "platform/encoding.h"
#include "random.h"

using namespace inventory;

namespace {

int Sign(int number) { return (number > 0) - (number < 0); }

TEST(IgnoringCase, TakesTheCaseOffEveryLetter) {
  EXPECT_EQ(CompareIgnoringCase("", ""), 0);
  EXPECT_EQ(CompareIgnoringCase("C:\\Windows\\A.sys", "c:\\windows\\a.SYS"), 0);
  EXPECT_EQ(CompareIgnoringCase("x\u0416\u00C4.sys", "X\u0436\u00E4.SYS"), 0);
  EXPECT_NE(CompareIgnoringCase("\u0436", "\u0437"), 0);
  EXPECT_LT(CompareIgnoringCase("a", "B"), 0);
  EXPECT_LT(CompareIgnoringCase("_", "A"), 0) << "as capitals they are the other way round";
  EXPECT_LT(CompareIgnoringCase("a", "ab"), 0);
  EXPECT_GT(CompareIgnoringCase("a\u0436", "A"), 0);
}

TEST(IgnoringCase, OrdersAsTextsInLowerCase) {
  const std::string pieces[] = {"a",          "B",      "_", "\u0436", "\u0416", "\u65E5",
                                "\U0001F600", "\u212A", "k", "\u0130", "1"};
  for (std::uint64_t seed = 1; seed <= 20'000; ++seed) {
    test::Random random(seed);
    std::string texts[2];
    for (std::string& text : texts) {
      for (std::size_t i = random.Below(5); i > 0; --i) text += random.Pick(pieces);
    }
    ASSERT_EQ(Sign(CompareIgnoringCase(texts[0], texts[1])),
              Sign(Orvane::LowerCase(texts[0]).compare(Orvane::LowerCase(texts[1]))))
        << "seed " << seed << ": " << texts[0] << " and " << texts[1];
  }
}

}  // namespace
