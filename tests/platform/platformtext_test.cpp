#include "platform/platformtext.h"

#include <gtest/gtest.h>

using namespace Orvane;

namespace {

TEST(BoundedText, EndsAtItsTerminatorOrAtTheEndOfTheBuffer) {
  const char buffer[] = {'a', 'b', '\0', 'c'};
  EXPECT_EQ(BoundedText(buffer, 4), "ab");
  EXPECT_EQ(BoundedText(buffer, 2), "ab");
  EXPECT_EQ(BoundedText(buffer, 1), "a");
  EXPECT_EQ(BoundedText(buffer, 0), "");
}

TEST(BytesFrom, CountsToTheEndOfTheBuffer) {
  const char buffer[4] = {};
  EXPECT_EQ(BytesFrom(buffer, buffer, 4), 4u);
  EXPECT_EQ(BytesFrom(buffer + 3, buffer, 4), 1u);
  EXPECT_EQ(BytesFrom(buffer + 4, buffer, 4), 0u) << "its end still is inside";
}

TEST(BytesFrom, FindsNothingOutsideOfTheBuffer) {
  const char buffer[4] = {};
  EXPECT_EQ(BytesFrom(buffer, buffer + 1, 2), std::nullopt);
  EXPECT_EQ(BytesFrom(buffer + 4, buffer + 1, 2), std::nullopt);
  EXPECT_EQ(BytesFrom(nullptr, buffer, 4), std::nullopt);
}

TEST(TextWithin, EndsAtItsTerminatorOrAtTheEndOfTheBuffer) {
  const char buffer[] = {'a', 'b', '\0', 'c', 'd'};
  EXPECT_EQ(TextWithin(buffer + 1, buffer, 5), "b");
  EXPECT_EQ(TextWithin(buffer + 3, buffer, 5), "cd");
  EXPECT_EQ(TextWithin(buffer + 5, buffer, 5), "");
}

TEST(TextWithin, ReadsATextElsewhereToItsTerminator) {
  const char buffer[] = {'a', 'b'};
  EXPECT_EQ(TextWithin("elsewhere", buffer, 2), "elsewhere");
  EXPECT_EQ(TextWithin(static_cast<const char*>(nullptr), buffer, 2), "");
}

TEST(TextWithin, OfUtf16EndsAtTheLastWholeCharacter) {
  alignas(wchar_t) char buffer[7] = {'a', 0, 'b', 0, 'c', 0, 'd'};
  const auto* const text = reinterpret_cast<const wchar_t*>(buffer);
  EXPECT_EQ(TextWithin(text, buffer, sizeof(buffer)), L"abc");
  EXPECT_EQ(TextWithin(text + 1, buffer, 5), L"b");
  EXPECT_EQ(TextWithin(text + 3, buffer, sizeof(buffer)), L"");
}

}  // namespace
