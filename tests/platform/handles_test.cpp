#include "platform/handles.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

using namespace Orvane;

namespace {

std::vector<HANDLE> closed;

BOOL Close(HANDLE handle) {
  closed.push_back(handle);
  SetLastError(99);
  return TRUE;
}

using TestHandle = UniqueHandle<HANDLE, &Close>;

HANDLE Numbered(std::intptr_t number) { return reinterpret_cast<HANDLE>(number); }

class UniqueHandleTest : public testing::Test {
 protected:
  void SetUp() override { closed.clear(); }
};

TEST_F(UniqueHandleTest, ClosesAtTheEndOfItsScope) {
  { const TestHandle handle(Numbered(1)); }
  EXPECT_EQ(closed, std::vector<HANDLE>{Numbered(1)});
}

TEST_F(UniqueHandleTest, TakesBothInvalidValuesForNone) {
  {
    const TestHandle null(nullptr);
    const TestHandle invalid(INVALID_HANDLE_VALUE);
    EXPECT_FALSE(null);
    EXPECT_FALSE(invalid);
  }
  EXPECT_TRUE(closed.empty());
}

TEST_F(UniqueHandleTest, ClosesOnceWhenMoved) {
  {
    TestHandle first(Numbered(1));
    TestHandle second(std::move(first));
    TestHandle third(Numbered(2));
    third = std::move(second);
    EXPECT_EQ(closed, std::vector<HANDLE>{Numbered(2)});
    EXPECT_EQ(third.get(), Numbered(1));
    EXPECT_FALSE(second);
  }
  EXPECT_EQ(closed, (std::vector<HANDLE>{Numbered(2), Numbered(1)}));
}

TEST_F(UniqueHandleTest, ReleasesToTheCaller) {
  {
    TestHandle handle(Numbered(1));
    EXPECT_EQ(handle.release(), Numbered(1));
  }
  EXPECT_TRUE(closed.empty());
}

TEST_F(UniqueHandleTest, LeavesOpenWhatIsKept) {
  KeepOpen(TestHandle(Numbered(1)));
  EXPECT_TRUE(closed.empty());
}

TEST_F(UniqueHandleTest, KeepsTheLastError) {
  TestHandle handle(Numbered(1));
  SetLastError(5);
  handle.reset();
  EXPECT_EQ(GetLastError(), 5u);
}

}  // namespace
