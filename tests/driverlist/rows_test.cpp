#include "formats/rows.h"

#include <gmock/gmock.h>
#include <windows.h>

#include "terminal/text.h"

using namespace driverlist;
using testing::ElementsAre;

namespace {

using TextRows = std::vector<std::vector<TextCell>>;

TEST(Rows, KeepTheEndOfAColumnThatAsksForIt) {
  EXPECT_EQ(FormatRows({{"name", 5}, {"path", 0, true}}, {{{"a.sys"}, {"C:\\drivers\\a.sys"}}}, {15, false}),
            "name   path\n"
            "a.sys  \u2026s\\a.sys\n");
}

TEST(Rows, CutFirstWhatIsAboveItsFloor) {
  const TextRows rows = {{{"0123456789"}, {"0123456789"}}};
  EXPECT_EQ(FormatRows({{"a", 9}, {"b", 4}}, rows, {15, false}),
            "a          b\n"
            "01234567\u2026  012\u2026\n");
  EXPECT_EQ(FormatRows({{"a", 9}, {"b", 4}}, rows, {12, false}),
            "a       b\n"
            "01234\u2026  012\u2026\n")
      << "all are down at their floors: then the widest";
}

TEST(Rows, AreColouredWhenThePageIs) {
  const TextRows rows = {{{"run", Tone::Good}, {"x"}}, {{"stop", Tone::Doubtful}, {""}}, {{"no", Tone::Bad}, {"y"}}};
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

TEST(Rows, LetNoTextColourThemOrMoveTheCursor) {
  EXPECT_EQ(FormatRows({{"a"}, {"b"}}, {{{"\x1B[31mred\r\n"}, {"\u202Esys"}}}, {0, true}),
            "\x1B[1ma\x1B[0m                                \x1B[1mb\x1B[0m\n"
            "[U+001B][31mred[U+000D][U+000A]  [U+202E]sys\n");
}

TEST(Rows, AlignWideCharactersAndMarks) {
  EXPECT_EQ(FormatRows({{"name"}, {"b"}},
                       {{{"\u65E5\u672C\u8A9E"}, {"x"}}, {{"e\u0301"}, {"y"}}, {{"\U0001F680"}, {"z"}}}, {}),
            "name    b\n"
            "\u65E5\u672C\u8A9E  x\n"
            "e\u0301       y\n"
            "\U0001F680      z\n");
  EXPECT_EQ(FormatRows({{"n"}, {"b"}}, {{{"\u65E5\u672C\u8A9E\u65E5"}, {"x"}}}, {9, false}),
            "n       b\n"
            "\u65E5\u672C\u2026   x\n")
      << "a column of six, of which a wide character leaves one";
}

TEST(Rows, WithoutColumnsAreNothing) { EXPECT_EQ(FormatRows({}, {}, {0, false}), ""); }

TEST(Rows, GrowNoSlowerThanTheirNumber) {
  const auto millisecondsFor = [](std::size_t count) {
    const TextRows rows(count, std::vector<TextCell>(9, {"C:\\windows\\system32\\drivers\\\u65E5\u672C\u8A9E.sys"}));
    const ULONGLONG start = GetTickCount64();
    EXPECT_EQ(Columns(FormatRows(std::vector<RowColumn>(9, {"column"}), rows, {79, false}).substr(0, 10)), 10u);
    return GetTickCount64() - start;
  };
  const ULONGLONG few = millisecondsFor(5000);
  EXPECT_LT(millisecondsFor(20000), 16 * few + 500) << "four times the rows";
}

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

TEST(Wrapped, CountsColumnsOfATerminal) {
  EXPECT_THAT(Wrapped("\u65E5\u672C\u8A9E", 5), ElementsAre("\u65E5\u672C", "\u8A9E"));
  EXPECT_THAT(Wrapped("\u65E5\u672C", 1), ElementsAre("\u65E5", "\u672C")) << "a piece is never empty";
  EXPECT_THAT(Wrapped("ab\x1B", 8), ElementsAre("ab[U+001", "B]"));
}

}  // namespace
