#include "versioncompare.h"

#include <gtest/gtest.h>

#include <locale>

using Orvane::CompareVersion;

namespace {

struct Case {
  const char* a;
  const char* b;
  int result;
  const char* why;
};

const Case Cases[] = {
    {"1.2.3", "1.2.10", -1, "3 is less than 0x10"},
    {"10.0.19041.1", "10.0.19041.1", 0, "all components equal"},
    {"1.2", "1.2.0", -1, "fewer components"},
    {"1.2.0", "1.2", 1, "more components"},
    {"01.2", "1.2", 0, "leading zeros do not count"},
    {"1.0a", "1.09", 1, "ten is more than nine"},
    {"1.2 beta", "1.2 alpha", 1, "texts"},
    {"1..2", "1.0.2", -1, "an empty component is a text"},
    {"1..2", "1..2", 0, "empty components are equal"},
    {".1", "1", -1, "a leading separator encloses an empty component"},
    {"1.", "1", 1, "a trailing separator encloses an empty component"},
    {"1. 2", "1.2", -1, "adjacent separators of both kinds are not merged"},
    {"1 2", "1.2", 0, "both separate"},
    {"n/a", "1.0", 1, "a text is compared as text"},
    {"", "1", -1, "empty is less"},
    {"", "", 0, "identical"},
    {"1.8000000000000000", "1.9", -1, "past 63 bits, so texts: 8 is less than 9"},
    {"1.7fffffffffffffff", "1.7ffffffffffffffe", 1, "63 bits are a number"},
    {"1.7fffffffffffffff", "1.9", 1, "a number, although the text would be less"},
    {"1.4000000000000000", "1.9", 1, "the same with the highest bit alone"},
    {"1.8000000000000000", "1.7", 1, "a text, although 64 bits with a sign would be less"},
    {"1.ffffffffffffffff", "1.7", 1, "the same of all bits"},
    {"1.7fffffffffffffff", "1.8000000000000000", -1, "texts, when one side is past 63 bits"},
    {"1.00000000000000000000000000000001", "1.1", 0, "leading zeros are not size"},
    {"-1", "1", -1, "a sign makes a text"},
    {"-1", "-2", -1, "also on both sides"},
    {"+1", "1", -1, "also a plus"},
    {"0x10", "0f", 1, "a prefix makes a text: x is greater than f"},
    {"0x10", "0x2", -1, "texts: 1 is less than 2"},
    {"\t1", "1", -1, "white space other than the blank makes a text"},
    {"\xE4", "f", 1, "bytes are unsigned"},
    {"1.2,3", "1.2,10", 1, "a comma makes a text"},
    {"ab", "abc", -1, "hexadecimal numbers of letters alone"},
    {"xyz", "xyzz", -1, "the longer text is the greater"},
};

TEST(CompareVersion, OrdersByComponents) {
  for (const Case& c : Cases) {
    EXPECT_EQ(CompareVersion(c.a, c.b), c.result) << c.a << " and " << c.b << ": " << c.why;
    EXPECT_EQ(CompareVersion(c.b, c.a), -c.result) << c.b << " and " << c.a << ": " << c.why;
  }
}

TEST(CompareVersion, LowersOnlyItsSecondArgument) {
  EXPECT_EQ(CompareVersion("1.2.B", "1.2.b"), 0) << "both are eleven";
  EXPECT_EQ(CompareVersion("1.2 beta", "1.2 BETA"), 0);
  EXPECT_EQ(CompareVersion("1.2 BETA", "1.2 beta"), -1) << "B is less than b";
}

TEST(CompareVersion, FindsNoOrderAroundMixedComponents) {
  // The reason why sorts must stay within bounds without a strict weak order.
  EXPECT_EQ(CompareVersion("1g", "9"), -1);
  EXPECT_EQ(CompareVersion("9", "10"), -1);
  EXPECT_EQ(CompareVersion("10", "1g"), -1);
}

TEST(CompareVersion, KeepsZeroBytesAsText) {
  const std::string withZero("1.2\0x", 5);
  EXPECT_EQ(CompareVersion(withZero, "1.2"), 1);
  EXPECT_EQ(CompareVersion(withZero, withZero), 0);
}

}  // namespace
