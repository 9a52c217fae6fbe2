// What a batch of hostile inputs tells when one of them is too much.
#include <gmock/gmock.h>

#include <set>

#include "hostile.h"
#include "program.h"
#include "scratchmachine.h"

using testing::HasSubstr;

namespace {

TEST(HostileBatch, NamesTheSeedOfWhatEndsTheProcess) {
  const test::EnvironmentVariable count("DRIVERINFO_HOSTILE_INPUTS", "2");
  const test::EnvironmentVariable seed("DRIVERINFO_HOSTILE_SEED", "41");
  const test::ProgramResult crash = test::RunProgram("batch_victim.exe", L"crash");
  EXPECT_EQ(crash.exitCode, 3u);
  EXPECT_THAT(crash.errors, HasSubstr("hostile input: victim, seed 42: exception C0000005 at "));
  const test::ProgramResult unhandled = test::RunProgram("batch_victim.exe", L"throw");
  EXPECT_EQ(unhandled.exitCode, 3u);
  EXPECT_THAT(unhandled.errors, HasSubstr("hostile input: victim, seed 42: a C++ exception that nobody handles"));
  const test::ProgramResult hang = test::RunProgram("batch_victim.exe", L"hang");
  EXPECT_EQ(hang.exitCode, 4u);
  EXPECT_THAT(hang.errors, HasSubstr("hostile input: victim, seed 42: does not come to an end"));
}

TEST(HostileBatch, MakesAnInputOfItsSeedAlone) {
  const test::EnvironmentVariable count("DRIVERINFO_HOSTILE_INPUTS", "3");
  const test::EnvironmentVariable seed("DRIVERINFO_HOSTILE_SEED", "7");
  std::vector<std::uint64_t> numbers;
  test::HostileBatch batch("numbers");
  batch.ForEach([&](test::Random& random) { numbers.push_back(random.Next()); });
  EXPECT_THAT(numbers, testing::ElementsAre(test::Random(7).Next(), test::Random(8).Next(), test::Random(9).Next()));
  EXPECT_EQ(std::set<std::uint64_t>(numbers.begin(), numbers.end()).size(), 3u);
}

}  // namespace
