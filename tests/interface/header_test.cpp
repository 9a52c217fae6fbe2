// The structure is laid out as the languages that declare it for themselves believe.
#include "header_test.h"

#include <gmock/gmock.h>

#include <cstddef>

namespace {

using O = driverinventory_options;

TEST(OptionsStructure, IsLaidOutTheSameInEveryLanguage) {
  EXPECT_EQ(NoOptionsOfC().size, sizeof(O));
  EXPECT_EQ(sizeof(O), 48u);
  const std::size_t offsets[] = {
      offsetof(O, size),        offsetof(O, kinds),   offsetof(O, verify),   offsetof(O, known_list_count),
      offsetof(O, known_lists), offsetof(O, host_id), offsetof(O, progress), offsetof(O, context)};
  EXPECT_THAT(offsets, testing::ElementsAre(0u, 4u, 8u, 12u, 16u, 24u, 32u, 40u));
}

}  // namespace
