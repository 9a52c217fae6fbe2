#include "terminal/text.h"

#include <gmock/gmock.h>

#include "platform/encoding.h"
#include "terminal/characterwidth.h"

using namespace driverlist;

namespace {

TEST(Visible, ShowsControlCharactersByTheirCode) {
  EXPECT_EQ(Visible(std::string("a\0b\t\r\n\x1B[2J\x7F", 11)), "a[U+0000]b[U+0009][U+000D][U+000A][U+001B][2J[U+007F]");
  EXPECT_EQ(Visible("\u0081\u009F"), "[U+0081][U+009F]");
}

TEST(Visible, ShowsWhatTurnsOrHidesText) {
  EXPECT_EQ(Visible("a\u202Egpj.exe\u2066\u200F\u061C"), "a[U+202E]gpj.exe[U+2066][U+200F][U+061C]");
  EXPECT_EQ(Visible("\u00AD\u200B\u2028\uFEFF\U000E0041"), "[U+00AD][U+200B][U+2028][U+FEFF][U+E0041]");
}

TEST(Visible, LeavesEveryScriptAsItIs) {
  for (const char* const text : {"", "acpi.sys", "Ger\u00E4t \u20AC", "10\u00A0000", "\u0442\u0435\u0441\u0442.sys",
                                 "\u65E5\u672C\u8A9E", "\U0001F5A7\uFE0F", "\u0645\u06CC\u200C\u062E", "e\u0301"}) {
    EXPECT_EQ(Visible(text), text);
  }
}

TEST(Visible, ReplacesEachByteThatIsNotUtf8) {
  EXPECT_EQ(Visible("a\xFF"
                    "b"),
            "a\uFFFDb");
  EXPECT_EQ(Visible("cut \xE2\x82"), "cut \uFFFD\uFFFD");
  EXPECT_EQ(Visible("\xE2"
                    "ab"),
            "\uFFFDab");
  EXPECT_EQ(Visible("\xC3\xA4\xA4"), "\u00E4\uFFFD") << "no byte of a text is lost to the damage behind it";
  EXPECT_EQ(Visible("\xC0\xBCscript"), "\uFFFD\uFFFDscript") << "an overlong form of a bracket";
  EXPECT_EQ(Visible("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD") << "half a surrogate pair";
  EXPECT_EQ(Visible("\xF4\x90\x80\x80"), "\uFFFD\uFFFD\uFFFD\uFFFD") << "beyond the last code point";
}

TEST(Visible, ChangesNothingTheSecondTime) {
  const std::string once = Visible("\u202E\xFF\x1B");
  EXPECT_EQ(Visible(once), once);
}

TEST(CharacterWidth, IsTwoColumnsForEastAsianCharactersAndEmoji) {
  for (const char32_t c : {U'\u65E5', U'\u3042', U'\u30AB', U'\uD55C', U'\uFF21', U'\u3000', U'\U00020000',
                           U'\U0001F680', U'\u26A1', U'\u231A', U'\U0001F9FF'}) {
    EXPECT_EQ(ColumnsOf(c), 2u) << static_cast<unsigned>(c);
  }
}

TEST(CharacterWidth, IsNoColumnForMarksAndJoiners) {
  for (const char32_t c : {U'\u0301', U'\u0E31', U'\u200D', U'\uFE0F', U'\u3099', U'\u1160', U'\u0300', U'\uFE2F'}) {
    EXPECT_EQ(ColumnsOf(c), 0u) << static_cast<unsigned>(c);
  }
}

TEST(CharacterWidth, IsOneColumnForAllElse) {
  for (const char32_t c : {U'a', U' ', U'\u00E4', U'\u0436', U'\u02FF', U'\u0370', U'\u05D0', U'\u2026', U'\u20AC',
                           U'\uFF61', U'\uFFFD', U'\u093F', U'\U0001F5A8'}) {
    EXPECT_EQ(ColumnsOf(c), 1u) << static_cast<unsigned>(c);
  }
}

TEST(Columns, AreThoseOfATerminal) {
  EXPECT_EQ(Columns(""), 0u);
  EXPECT_EQ(Columns("Ger\u00E4t\u20AC"), 6u);
  EXPECT_EQ(Columns("\u65E5\u672C\u8A9E.sys"), 10u);
  EXPECT_EQ(Columns("e\u0301\u0302x"), 2u);
  EXPECT_EQ(Columns("\U0001F680"), 2u);
  EXPECT_EQ(Columns("\xE2\x82"), 2u) << "each byte will be a U+FFFD";
}

TEST(CodePoints, AreFoundOneByOne) {
  const std::string text = "a\u00E4\u65E5\U0001F680\xFFz";
  std::vector<std::size_t> starts;
  for (std::size_t at = 0; at < text.size(); at = NextCodePoint(text, at)) starts.push_back(at);
  EXPECT_THAT(starts, testing::ElementsAre(0u, 1u, 3u, 6u, 10u, 11u));
}

TEST(Cut, KeepsTheFirstCharacters) {
  EXPECT_EQ(Cut("Ger\u00E4t\u20AC", 6), "Ger\u00E4t\u20AC");
  EXPECT_EQ(Cut("Ger\u00E4t\u20AC", 5), "Ger\u00E4\u2026");
  EXPECT_EQ(Cut("Ger\u00E4t\u20AC", 4), "Ger\u2026");
  EXPECT_EQ(Cut("ab", 1), "\u2026");
  EXPECT_EQ(Cut("ab", 0), "");
  EXPECT_EQ(Cut("", 3), "");
}

TEST(Cut, LeavesNoHalfOfAWideCharacter) {
  EXPECT_EQ(Cut("\u65E5\u672C\u8A9E", 6), "\u65E5\u672C\u8A9E");
  EXPECT_EQ(Cut("\u65E5\u672C\u8A9E", 5), "\u65E5\u672C\u2026");
  EXPECT_EQ(Cut("\u65E5\u672C\u8A9E", 4), "\u65E5\u2026") << "three columns";
  EXPECT_EQ(Cut("\u65E5\u672C\u8A9E", 2), "\u2026");
}

TEST(Cut, KeepsMarksWithTheirCharacter) {
  EXPECT_EQ(Cut("e\u0301e\u0301e\u0301", 2), "e\u0301\u2026");
  EXPECT_EQ(CutFront("e\u0301e\u0301e\u0301", 2), "\u2026e\u0301");
}

TEST(CutFront, KeepsTheLastCharacters) {
  EXPECT_EQ(CutFront("Ger\u00E4t\u20AC", 6), "Ger\u00E4t\u20AC");
  EXPECT_EQ(CutFront("Ger\u00E4t\u20AC", 4), "\u2026\u00E4t\u20AC");
  EXPECT_EQ(CutFront("ab", 1), "\u2026");
  EXPECT_EQ(CutFront("ab", 0), "");
  EXPECT_EQ(CutFront("", 3), "");
  EXPECT_EQ(CutFront("\u65E5\u672C\u8A9E", 5), "\u2026\u672C\u8A9E");
  EXPECT_EQ(CutFront("\u65E5\u672C\u8A9E", 4), "\u2026\u8A9E") << "three columns";
}

TEST(Encoding, GoesToAndFromUtf16) {
  EXPECT_EQ(Orvane::Utf8FromWide(L"\u0436\u4E2D"), "\u0436\u4E2D");
  EXPECT_EQ(Orvane::WideFromUtf8("\u0436\u4E2D"), L"\u0436\u4E2D");
  EXPECT_EQ(Orvane::Utf8FromWide(L""), "");
  EXPECT_EQ(Orvane::WideFromUtf8(""), L"");
}

TEST(Encoding, LowersTheLettersOfEveryScript) {
  EXPECT_EQ(Orvane::LowerCase("GER\u00C4T \u0416 1.SYS"), "ger\u00E4t \u0436 1.sys");
  EXPECT_EQ(Orvane::LowerCase(""), "");
}

}  // namespace
