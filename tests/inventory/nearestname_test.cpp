#include "inventory/nearestname.h"

#include <gtest/gtest.h>

using namespace inventory;

namespace {

std::string_view Nearest(std::string_view name) {
  return NearestName(name, {"kind", "name", "version", "version_key", "start_type", "image_time", "provider"});
}

TEST(NearestName, IsASlipAway) {
  EXPECT_EQ(Nearest("nmae"), "name") << "letters exchanged";
  EXPECT_EQ(Nearest("provder"), "provider") << "a letter missing";
  EXPECT_EQ(Nearest("verssion"), "version") << "a letter too many";
  EXPECT_EQ(Nearest("kinf"), "kind") << "another letter";
  EXPECT_EQ(Nearest("Version"), "version") << "another case";
  EXPECT_EQ(Nearest("start-type"), "start_type");
}

TEST(NearestName, IsAPartOrTheWhole) {
  EXPECT_EQ(Nearest("file_version"), "version");
  EXPECT_EQ(Nearest("start"), "start_type");
  EXPECT_EQ(Nearest("time"), "image_time");
  EXPECT_EQ(Nearest("vers"), "version") << "the nearer of two";
}

TEST(NearestName, IsEmptyWhereNoNameIsNear) {
  EXPECT_EQ(Nearest("colour"), "");
  EXPECT_EQ(Nearest(""), "");
  EXPECT_EQ(Nearest("xy"), "");
  EXPECT_EQ(Nearest(std::string(100000, 'x')), "");
  EXPECT_EQ(NearestName("name", {}), "");
}

}  // namespace
