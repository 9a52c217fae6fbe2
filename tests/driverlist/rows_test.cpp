#include "formats/rows.h"

#include <gmock/gmock.h>
#include <windows.h>

#include "terminal/text.h"

using namespace driverlist;

namespace {

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

TEST(Rows, CutNoTextThatMustBeWhole) {
  const TextRows rows = {{{"0123456789"}, {"1.2.3.4", Tone::Plain, true}}};
  EXPECT_EQ(FormatRows({{"name"}, {"version", 2}}, rows, {15, false}),
            "name    version\n"
            "01234\u2026  1.2.3.4\n");
}

TEST(Rows, SayWhichColumnsLeft) {
  const TextRows rows = {{{"a.sys"}, {"1.2.3.4", Tone::Plain, true}, {"Running"}, {"Somebody"}}};
  const std::vector<RowColumn> columns = {
      {"name", 5}, {"version", 7}, {"state", 7, false, 2}, {"provider", 8, false, 1}};
  EXPECT_EQ(FormatRows(columns, rows, {33, false}),
            "name   version  state    provider\n"
            "a.sys  1.2.3.4  Running  Somebody\n");
  EXPECT_EQ(FormatRows(columns, rows, {32, false}),
            "name   version  state\n"
            "a.sys  1.2.3.4  Running\n"
            "\n"
            "There is no room for provider;\n"
            "--columns shows it.\n");
  EXPECT_EQ(FormatRows(columns, rows, {22, true}),
            "\x1B[1mname\x1B[0m   \x1B[1mversion\x1B[0m\n"
            "a.sys  1.2.3.4\n"
            "\n"
            "There is no room for\n"
            "state and provider;\n"
            "--columns shows them.\n");
}

TEST(Rows, AreParagraphsWhereATableHasNoRoom) {
  const TextRows rows = {{{"a.sys", Tone::Bad}, {"10.0.22621.1635", Tone::Plain, true}, {"Running", Tone::Good, true}},
                         {{"b.sys"}, {""}, {"Stopped", Tone::Plain, true}},
                         {{""}, {""}, {""}}};
  const std::vector<RowColumn> columns = {{"name", 12}, {"version", 12, false, 1}, {"state"}};
  EXPECT_EQ(FormatRows({columns[0], {"version", 12}, columns[2]}, rows, {30, true}),
            "\x1B[1mname\x1B[0m     \x1B[31ma.sys\x1B[0m\n"
            "\x1B[1mversion\x1B[0m  10.0.22621.1635\n"
            "\x1B[1mstate\x1B[0m    \x1B[32mRunning\x1B[0m\n"
            "\n"
            "\x1B[1mname\x1B[0m     b.sys\n"
            "\x1B[1mstate\x1B[0m    Stopped\n"
            "\n"
            "\x1B[1mname\x1B[0m\n");
  EXPECT_EQ(FormatRows(columns, rows, {11, false}),
            "name\n"
            "  a.sys\n"
            "version\n"
            "  10.0.2262\n"
            "  1.1635\n"
            "state\n"
            "  Running\n"
            "\n"
            "name\n"
            "  b.sys\n"
            "state\n"
            "  Stopped\n"
            "\n"
            "name\n")
      << "also the column that would have left";
}

TEST(Rows, FitAtTheFloorsOfTheirColumnsOrNotAtAll) {
  const TextRows rows = {{{"0123456789"}, {"0123456789"}}};
  EXPECT_EQ(FormatRowsAtTheirFloors({{"a", 8}, {"b", 8}}, rows, {18, false}),
            "a         b\n"
            "0123456\u2026  0123456\u2026\n");
  EXPECT_EQ(FormatRowsAtTheirFloors({{"a", 8}, {"b", 8}}, rows, {17, false}), std::nullopt);
}

}  // namespace
