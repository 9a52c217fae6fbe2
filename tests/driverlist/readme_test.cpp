// The README's code is the example that the build compiles. The manual shows what the program prints.
#include <gmock/gmock.h>

#include "commands/columns.h"
#include "commands/options.h"
#include "inventory/healthrules.h"
#include "temporaryfiles.h"

namespace {

TEST(Readme, ShowsTheExample) {
  const std::string code = "```cpp\n" + test::FileContent(L"..\\..\\examples\\list.cpp") + "```\n";
  EXPECT_THAT(test::FileContent(L"..\\..\\README.md"), testing::HasSubstr(code));
}

std::string Manual() { return test::FileContent(L"..\\..\\docs\\driverlist.md"); }

std::string PrintedForTheLaptop(const std::wstring& what) {
  return test::FileContent(L"..\\samplemachine\\expected\\intel-laptop." + what);
}

TEST(Readme, ShowsWhatIsPrinted) {
  EXPECT_THAT(test::FileContent(L"..\\..\\README.md"),
              testing::HasSubstr("$ scripts/run\n" + PrintedForTheLaptop(L"list.txt") + "```\n"));
}

TEST(Manual, ShowsWhatIsPrinted) {
  const std::string health = PrintedForTheLaptop(L"health.txt");
  EXPECT_THAT(Manual(), testing::HasSubstr("$ driverlist health --no-verify\n" + health + "```\n"));
  const std::string diff = PrintedForTheLaptop(L"diff.txt");
  EXPECT_THAT(Manual(), testing::HasSubstr("Z\n" + diff.substr(diff.find("difference ")) + "```\n"));
}

TEST(Manual, ExplainsEveryFieldRuleAndOption) {
  for (const auto& mode : {std::optional<inventory::ListingMode>(), std::optional(inventory::ListingMode::All)}) {
    for (const std::string& name : driverlist::ColumnNames(driverlist::ColumnsOf(mode))) {
      EXPECT_THAT(Manual(), testing::HasSubstr("`" + name + "`"));
    }
  }
  for (const inventory::HealthRule& rule : inventory::HealthRules()) {
    EXPECT_THAT(Manual(), testing::HasSubstr("| `" + std::string(rule.name) + "` |"));
  }
  const std::string help = driverlist::ParseCommandLine({"--help"}).text;
  for (std::size_t at = help.find("--"); at != std::string::npos; at = help.find("--", at + 2)) {
    const std::string option = help.substr(at, help.find_first_not_of("abcdefghijklmnopqrstuvwxyz-", at) - at);
    EXPECT_THAT(Manual(), testing::HasSubstr(option));
  }
}

}  // namespace
