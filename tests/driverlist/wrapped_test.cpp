#include "formats/wrapped.h"

#include <gmock/gmock.h>

using driverlist::Paragraph;
using driverlist::Wrapped;
using testing::ElementsAre;

namespace {

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

TEST(Wrapped, BreaksPathsBehindAFolder) {
  EXPECT_THAT(Wrapped("C:\\windows\\System32\\drivers\\net.sys", 30),
              ElementsAre("C:\\windows\\System32\\drivers\\", "net.sys"));
  EXPECT_THAT(Wrapped("C:\\averylongfoldername\\net.sys", 12), ElementsAre("C:\\averylong", "foldername\\", "net.sys"))
      << "unless that leaves most of a line empty";
}

TEST(Paragraph, IsAsWideAsThePage) {
  EXPECT_EQ(Paragraph("one two three", 9, 2), "  one two\n  three\n");
  EXPECT_EQ(Paragraph("one two three", 0, 2), "  one two three\n");
  EXPECT_EQ(Paragraph("ab\x1B", 0), "ab[U+001B]\n");
  EXPECT_EQ(Paragraph("", 9), "\n");
  EXPECT_EQ(Paragraph("ab", 2, 2), "  a\n  b\n") << "at least one character to a line";
}

}  // namespace
