// What the hostile inputs rest on: an over-read crashes, and the library's own way of reading does not over-read.
#include "guardedmemory.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/platformtext.h"

using namespace Orvane;

namespace {

char ReadByte(const volatile char* byte) { return *byte; }

TEST(GuardedMemory, EndsBeforeAPageThatNobodyMayTouch) {
  test::GuardedMemory memory(10'000);
  for (const std::size_t size : {std::size_t{1}, std::size_t{4095}, std::size_t{4096}, std::size_t{10'000}}) {
    char* const begin = memory.Zeros(size);
    EXPECT_FALSE(test::Crashes([&] { begin[size - 1] = 'x'; })) << size;
    EXPECT_TRUE(test::Crashes([&] { ReadByte(begin + size); })) << size;
    EXPECT_TRUE(test::Crashes([&] { begin[size] = 'x'; })) << size;
    EXPECT_EQ(begin[size - 1], 'x');
  }
}

TEST(GuardedMemory, HoldsWhatIsPutIntoIt) {
  test::GuardedMemory memory(100);
  char* const begin = memory.Put("text");
  EXPECT_EQ(std::string(begin, 4), "text");
  EXPECT_TRUE(memory.Holds(begin));
  EXPECT_TRUE(memory.Holds(begin + 4)) << "its end";
  EXPECT_FALSE(memory.Holds(begin + 5));
  EXPECT_EQ(memory.Zeros(4), begin);
  EXPECT_EQ(std::string(begin, 4), std::string(4, '\0'));
  EXPECT_THROW(memory.Zeros(memory.Largest() + 1), std::runtime_error);
}

TEST(GuardedMemory, CatchesWhoReadsATextToATerminatorThatIsNotThere) {
  test::GuardedMemory memory(100);
  const char* const text = memory.Put("no terminator");
  EXPECT_TRUE(test::Crashes([&] { (void)std::string(text); }));
  std::string read;
  EXPECT_FALSE(test::Crashes([&] { read = BoundedText(text, 13); }));
  EXPECT_EQ(read, "no terminator");
  EXPECT_FALSE(test::Crashes([&] { read = TextWithin(text + 3, text, 13); }));
  EXPECT_EQ(read, "terminator");
}

}  // namespace
