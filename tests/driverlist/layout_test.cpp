#include "formats/layout.h"

#include <gmock/gmock.h>

using namespace driverlist;

namespace {

/// "0:8 2:5" for the first column in a width of 8 and the third in one of 5; "no room".
std::string Laid(const std::vector<ColumnNeeds>& columns, std::size_t width,
                 Cutting cutting = Cutting::AsFarAsReadable) {
  const auto layout = LayOut(columns, width, cutting);
  if (!layout) return "no room";
  std::string text;
  for (std::size_t i = 0; i < layout->shown.size(); ++i) {
    text += (i == 0 ? "" : " ") + std::to_string(layout->shown[i]) + ":" + std::to_string(layout->widths[i]);
  }
  return text;
}

// A name and a version.
const std::vector<ColumnNeeds> Two = {{30, 0, 16, 0}, {15, 15, 12, 0}};

TEST(Layout, GivesColumnsWhatTheyNeed) {
  EXPECT_EQ(Laid(Two, 47), "0:30 1:15");
  EXPECT_EQ(Laid(Two, 250), "0:30 1:15");
  EXPECT_EQ(Laid(Two, 0), "0:30 1:15") << "no page";
  EXPECT_EQ(Laid({}, 10), "");
  EXPECT_EQ(Laid({{0, 0, 0, 0}}, 1), "0:1") << "a column is never without width";
}

TEST(Layout, CutsTheWidestFirst) {
  EXPECT_EQ(Laid({{20, 0, 5, 0}, {30, 0, 5, 0}}, 47), "0:20 1:25");
  EXPECT_EQ(Laid({{20, 0, 5, 0}, {30, 0, 5, 0}}, 32), "0:15 1:15");
}

TEST(Layout, CutsNothingThatMustBeWhole) {
  EXPECT_EQ(Laid(Two, 46), "0:29 1:15");
  EXPECT_EQ(Laid(Two, 33), "0:16 1:15") << "the name is at its floor";
  EXPECT_EQ(Laid(Two, 32), "0:15 1:15") << "and gives way below it";
  EXPECT_EQ(Laid(Two, 23), "0:6 1:15");
  EXPECT_EQ(Laid(Two, 22), "no room");
}

TEST(Layout, KeepsToTheFloorsOnDemand) {
  EXPECT_EQ(Laid(Two, 33, Cutting::DownToTheFloor), "0:16 1:15");
  EXPECT_EQ(Laid(Two, 32, Cutting::DownToTheFloor), "no room");
}

TEST(Layout, LetsColumnsLeaveInTheirOrderBeforeItCutsBelowFloors) {
  const std::vector<ColumnNeeds> columns = {{20, 0, 16, 0}, {9, 9, 0, 2}, {15, 15, 0, 0}, {40, 0, 10, 1}};
  EXPECT_EQ(Laid(columns, 56), "0:16 1:9 2:15 3:10");
  EXPECT_EQ(Laid(columns, 55), "0:20 1:9 2:15") << "there is room again for what stays";
  EXPECT_EQ(Laid(columns, 44), "0:16 1:9 2:15");
  EXPECT_EQ(Laid(columns, 43), "0:20 2:15");
  EXPECT_EQ(Laid(columns, 23), "0:6 2:15");
  EXPECT_EQ(Laid(columns, 22), "no room");
}

TEST(Layout, LetsEmptyColumnsLeaveBeforeItCuts) {
  const std::vector<ColumnNeeds> columns = {{20, 0, 10, 0}, {3, 0, 0, 2, true}, {8, 0, 0, 1}, {3, 0, 0, 0, true}};
  EXPECT_EQ(Laid(columns, 40), "0:20 1:3 2:8 3:3");
  EXPECT_EQ(Laid(columns, 39), "0:20 2:8 3:3") << "the one that may leave";
  EXPECT_EQ(Laid(columns, 34), "0:19 2:8 3:3") << "all others are cut as before";
}

TEST(Layout, LeavesNarrowColumnsAsTheyAre) {
  EXPECT_EQ(Laid({{3, 0, 16, 0}, {30, 0, 16, 0}}, 21), "0:3 1:16");
  EXPECT_EQ(Laid({{3, 0, 16, 0}, {30, 0, 16, 0}}, 11), "0:3 1:6");
  EXPECT_EQ(Laid({{5, 0, 5, 0}, {8, 0, 4, 0}}, 11), "0:5 1:4") << "floors below what is readable count, too";
}

}  // namespace
