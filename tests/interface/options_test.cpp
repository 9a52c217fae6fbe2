// Options of older and newer hosts.
#include "machine.h"

namespace {

using OptionsOfAMachine = test::HostedMachine;

/// A host of a later version: its structure is longer.
struct Longer {
  driverinventory_options options{};
  uint64_t more = 0;
};

std::size_t CountOf(const driverinventory_options* options) {
  std::size_t count = 0;
  EXPECT_EQ(driverinventory_count(test::Collected(options).get(), &count), DRIVERINVENTORY_OK);
  return count;
}

TEST_F(OptionsOfAMachine, AreReadAsFarAsAnOlderHostHasThem) {
  driverinventory_options options{};
  // The first of all hosts had the kinds and no more; what is behind them is none of the options.
  options.size = 8;
  options.kinds = DRIVERINVENTORY_SERVICES;
  options.verify = 1;
  options.known_list_count = 5;
  options.progress = [](void*, const char*, uint64_t, uint64_t) -> int32_t { return 1; };
  EXPECT_EQ(CountOf(&options), 1u);
}

TEST_F(OptionsOfAMachine, OfANewerHostAreTakenWhereNothingNewIsSet) {
  Longer longer;
  longer.options.size = sizeof(longer);
  longer.options.kinds = DRIVERINVENTORY_SERVICES;
  EXPECT_EQ(CountOf(&longer.options), 1u);
  longer.more = 1;
  driverinventory* inventory = nullptr;
  EXPECT_EQ(driverinventory_collect(&longer.options, &inventory), DRIVERINVENTORY_E_UNSUPPORTED);
  EXPECT_STREQ(driverinventory_error(), "The options ask for something that this version does not know.");
}

TEST(Options, WithoutASizeAreRefused) {
  driverinventory* inventory = nullptr;
  for (const uint32_t size : {0u, 4u, 7u, 4097u, 0xFFFFFFFFu}) {
    driverinventory_options options{};
    options.size = size;
    EXPECT_EQ(driverinventory_collect(&options, &inventory), DRIVERINVENTORY_E_ARGUMENT) << size;
    EXPECT_STREQ(driverinventory_error(), "The size of the options is not set.");
  }
}

TEST(Options, ThatNoVersionKnowsAreRefused) {
  driverinventory* inventory = nullptr;
  driverinventory_options options{};
  options.size = sizeof(options);
  options.kinds = 16;
  EXPECT_EQ(driverinventory_collect(&options, &inventory), DRIVERINVENTORY_E_UNSUPPORTED);
  EXPECT_STREQ(driverinventory_error(), "The options ask for a kind of record that this version does not know.");
  options.kinds = 0;
  options.known_list_count = 1;
  EXPECT_EQ(driverinventory_collect(&options, &inventory), DRIVERINVENTORY_E_ARGUMENT);
  EXPECT_STREQ(driverinventory_error(), "The lists of known drivers are null.");
}

TEST_F(OptionsOfAMachine, ToVerifyGiveTheStateOfEachImage) {
  driverinventory_options options{};
  options.size = sizeof(options);
  options.kinds = DRIVERINVENTORY_SERVICES;
  options.verify = 1;
  EXPECT_THAT(test::Document(test::Collected(&options).get(), DRIVERINVENTORY_JSON),
              testing::HasSubstr("\"signature\": \"unsigned\""));
}

TEST(Options, WithListsThatCannotBeUsedAreRefused) {
  driverinventory* inventory = nullptr;
  driverinventory_options options{};
  options.size = sizeof(options);
  const char* lists[] = {"no-such-list.json", nullptr};
  options.known_lists = lists;
  options.known_list_count = 1;
  EXPECT_EQ(driverinventory_collect(&options, &inventory), DRIVERINVENTORY_E_ARGUMENT);
  EXPECT_STREQ(driverinventory_error(), "Lists of known drivers need verification: set verify.");
  options.verify = 1;
  EXPECT_EQ(driverinventory_collect(&options, &inventory), DRIVERINVENTORY_E_INPUT);
  EXPECT_THAT(driverinventory_error(), testing::HasSubstr("no-such-list.json"));
  options.known_list_count = 2;
  EXPECT_EQ(driverinventory_collect(&options, &inventory), DRIVERINVENTORY_E_ARGUMENT);
  EXPECT_STREQ(driverinventory_error(), "A list of known drivers is null.");
  options.known_list_count = 4097;
  EXPECT_EQ(driverinventory_collect(&options, &inventory), DRIVERINVENTORY_E_ARGUMENT);
  EXPECT_STREQ(driverinventory_error(), "There are too many lists of known drivers.");
}

}  // namespace
