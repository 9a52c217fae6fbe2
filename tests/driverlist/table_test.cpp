#include "table.h"

#include <gmock/gmock.h>

#include "formats.h"
#include "unicode.h"

using namespace driverlist;
using testing::ElementsAre;

namespace {

TEST(Rows, KeepTheEndOfAColumnThatAsksForIt) {
  EXPECT_EQ(FormatRows({{"name", 5}, {"path", 0, true}}, {{{"a.sys"}, {"C:\\drivers\\a.sys"}}}, {15, false}),
            "name   path\n"
            "a.sys  \u2026s\\a.sys\n");
}

TEST(Rows, CutWhatStandsAboveItsFloorFirst) {
  const std::vector<std::vector<Cell>> rows = {{{"0123456789"}, {"0123456789"}}};
  EXPECT_EQ(FormatRows({{"a", 9}, {"b", 4}}, rows, {15, false}),
            "a          b\n"
            "01234567\u2026  012\u2026\n");
  EXPECT_EQ(FormatRows({{"a", 9}, {"b", 4}}, rows, {12, false}),
            "a       b\n"
            "01234\u2026  012\u2026\n")
      << "all are down at their floors: then the widest";
}

TEST(Rows, AreColouredWhenThePageIs) {
  const std::vector<std::vector<Cell>> rows = {
      {{"run", Colour::Green}, {"x"}}, {{"stop", Colour::Yellow}, {""}}, {{"no", Colour::Red}, {"y"}}};
  EXPECT_EQ(FormatRows({{"state"}, {"b"}}, rows, {0, true}),
            "\x1B[1mstate\x1B[0m  \x1B[1mb\x1B[0m\n"
            "\x1B[32mrun\x1B[0m    x\n"
            "\x1B[33mstop\x1B[0m\n"
            "\x1B[31mno\x1B[0m     y\n");
  EXPECT_EQ(FormatRows({{"state"}, {"b"}}, rows, {0, false}),
            "state  b\n"
            "run    x\n"
            "stop\n"
            "no     y\n");
}

TEST(Rows, LetNoTextColourThem) {
  EXPECT_EQ(FormatRows({{"a"}}, {{{"\x1B[31mred"}}}, {0, true}), "\x1B[1ma\x1B[0m\n?[31mred\n");
}

TEST(Rows, WithoutColumnsAreNothing) { EXPECT_EQ(FormatRows({}, {}, {0, false}), ""); }

TEST(Wrapped, BreaksAtBlanks) {
  EXPECT_THAT(Wrapped("one two three", 7), ElementsAre("one two", "three"));
  EXPECT_THAT(Wrapped("one two three", 6), ElementsAre("one", "two", "three"));
  EXPECT_THAT(Wrapped("one two three", 13), ElementsAre("one two three"));
  EXPECT_THAT(Wrapped("", 5), ElementsAre(""));
}

TEST(Wrapped, BreaksLongWordsBetweenCharacters) {
  EXPECT_THAT(Wrapped("Ger\u00E4te\u00E4 x", 4), ElementsAre("Ger\u00E4", "te\u00E4", "x"));
  EXPECT_THAT(Wrapped("abc", 1), ElementsAre("a", "b", "c"));
}

TEST(CutFront, KeepsTheLastCharacters) {
  EXPECT_EQ(CutFront("Ger\u00E4t\u20AC", 6), "Ger\u00E4t\u20AC");
  EXPECT_EQ(CutFront("Ger\u00E4t\u20AC", 4), "\u2026\u00E4t\u20AC");
  EXPECT_EQ(CutFront("ab", 1), "\u2026");
  EXPECT_EQ(CutFront("ab", 0), "");
  EXPECT_EQ(CutFront("", 3), "");
}

TEST(LowerCase, IsThatOfEveryScript) {
  EXPECT_EQ(LowerCase("GER\u00C4T \u0416 1.SYS"), "ger\u00E4t \u0436 1.sys");
  EXPECT_EQ(LowerCase(""), "");
}

}  // namespace
