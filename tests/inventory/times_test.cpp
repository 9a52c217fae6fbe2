#include "inventory/times.h"

#include <gtest/gtest.h>

using inventory::SecondsOf;

namespace {

// The expected numbers are those of `date -u -d ... +%s`.
TEST(Seconds, CountFromTheBeginningOf1970) {
  EXPECT_EQ(SecondsOf("1970-01-01T00:00:00Z"), 0);
  EXPECT_EQ(SecondsOf("1970-01-02"), 86400);
  EXPECT_EQ(SecondsOf("2024-05-06T07:08:09Z"), 1714979289);
  EXPECT_EQ(SecondsOf("2024-02-29"), 1709164800);
  EXPECT_EQ(SecondsOf("2024-03-01"), 1709251200);
  EXPECT_EQ(SecondsOf("2000-02-29T23:59:59Z"), 951868799);
  EXPECT_EQ(SecondsOf("1969-12-31T23:59:59Z"), -1);
  EXPECT_EQ(SecondsOf("1601-01-01"), -11644473600);
}

TEST(Seconds, AreUnknownOfOtherTexts) {
  for (const char* const text : {"", "2024", "2024-05", "2024-05-06T07:08:09", "2024-05-06 07:08:09Z", "05/06/2024",
                                 "2024-0a-06", "2024-05-06T07:08:09Zx"}) {
    EXPECT_FALSE(SecondsOf(text)) << text;
  }
}

}  // namespace
