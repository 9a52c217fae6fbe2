#include "inventory/packages.h"

#include <gmock/gmock.h>

#include "scratchmachine.h"

using namespace inventory;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TEST(IsoDate, ReadsBothWaysToWriteADate) {
  EXPECT_EQ(IsoDate("05/17/2023"), "2023-05-17");
  EXPECT_EQ(IsoDate("5-7-2023"), "2023-05-07");
  EXPECT_EQ(IsoDate("5/7/2023"), "2023-05-07");
}

TEST(IsoDate, ReadsNothingElse) {
  for (const char* const text :
       {"", "2023-05-17", "13/01/2023", "00/01/2023", "01/32/2023", "01/00/2023", "5/17-2023", "05/17/2023 ",
        "05.17.2023", "05/17", "05/17/99", "a/b/c", "-5/-7/2023", "005/17/2023"}) {
    EXPECT_EQ(IsoDate(text), "") << text;
  }
}

using PackagesOfAMachine = test::ScratchMachine;

std::string InfPath(const std::string& file) { return test::InfDirectory() + "\\" + file; }

std::vector<PackageFacts> OfThisTest(const std::set<std::string>& inUse) {
  std::vector<PackageFacts> packages;
  for (PackageFacts& package : ReadPackages(inUse)) {
    if (package.inf.find("90") != std::string::npos) packages.push_back(std::move(package));
  }
  return packages;
}

TEST_F(PackagesOfAMachine, AreReadWhole) {
  const test::ScratchFile inf(InfPath("oem9010.inf"), std::vector<std::string>{"[Version]",
                                                                               "Signature=\"$WINDOWS NT$\"",
                                                                               "Provider=%Maker%",
                                                                               "Class=Net",
                                                                               "DriverVer=01/02/2023,1.2.3.4",
                                                                               "[SourceDisksNames]",
                                                                               "1=%Disk%,,,\\x64",
                                                                               "2=\"Other disk\"",
                                                                               "[SourceDisksFiles]",
                                                                               "oinet.dll=1",
                                                                               "OiNet.sys=2",
                                                                               "[SourceDisksFiles.x86]",
                                                                               "OINET.SYS=1",
                                                                               "OiOld.sys=1",
                                                                               "[SourceDisksFiles.amd64]",
                                                                               "OiExtra.SYS=1",
                                                                               "[SourceDisksFiles.arm64]",
                                                                               "OiArm.sys=1",
                                                                               "[Strings]",
                                                                               "Maker=\"Some maker\"",
                                                                               "Disk=\"Some disk\""});
  const std::vector<PackageFacts> packages = OfThisTest({});
  ASSERT_EQ(packages.size(), 1u);
  EXPECT_EQ(packages[0].inf, "oem9010.inf");
  EXPECT_EQ(packages[0].provider, "Some maker");
  EXPECT_EQ(packages[0].class_name, "Net");
  EXPECT_EQ(packages[0].version, "1.2.3.4");
  EXPECT_EQ(packages[0].date, "2023-01-02");
  EXPECT_EQ(packages[0].disk, "Other disk") << "that of the first driver";
  EXPECT_THAT(packages[0].files, ElementsAre("oinet.dll", "OiNet.sys", "OiExtra.SYS", "OINET.SYS", "OiOld.sys"));
}

TEST_F(PackagesOfAMachine, ComeInTheOrderOfTheirNumbersAndThenThoseInUse) {
  const std::vector<std::string> lines = {"[Version]", "Signature=\"$WINDOWS NT$\""};
  const test::ScratchFile ten(InfPath("oem9010.inf"), lines);
  const test::ScratchFile two(InfPath("OEM9002.inf"), lines);
  const test::ScratchFile nine(InfPath("oem909.inf"), lines);
  const test::ScratchFile inbox(InfPath("net90.inf"), lines);
  const test::ScratchFile unused(InfPath("disk90.inf"), lines);
  std::vector<std::string> infs;
  for (const PackageFacts& package : OfThisTest({"NET90.INF", "oem9002.inf"})) infs.push_back(package.inf);
  EXPECT_THAT(infs, ElementsAre("oem909.inf", "OEM9002.inf", "oem9010.inf", "NET90.INF"));
}

TEST_F(PackagesOfAMachine, HaveNothingButTheirNameWhenTheyCannotBeRead) {
  const test::ScratchFile empty(InfPath("oem9003.inf"), std::size_t{0});
  const std::vector<PackageFacts> packages = OfThisTest({});
  ASSERT_EQ(packages.size(), 1u);
  const PackageFacts& package = packages[0];
  EXPECT_EQ(package.version + package.provider + package.date + package.class_name + package.disk, "");
  EXPECT_THAT(package.files, IsEmpty());
  EXPECT_EQ(package.inf, "oem9003.inf");
}

TEST_F(PackagesOfAMachine, AreNotThereWithoutTheirInf) { EXPECT_THAT(OfThisTest({"gone90.inf"}), IsEmpty()); }

TEST_F(PackagesOfAMachine, WithoutDriverHaveNoDisk) {
  const test::ScratchFile inf(InfPath("oem9010.inf"),
                              std::vector<std::string>{"[Version]", "Signature=\"$WINDOWS NT$\"", "[SourceDisksNames]",
                                                       "1=\"Some disk\"", "[SourceDisksFiles]", "oi.dll=1"});
  const std::vector<PackageFacts> packages = OfThisTest({});
  ASSERT_EQ(packages.size(), 1u);
  EXPECT_EQ(packages[0].disk, "");
  EXPECT_THAT(packages[0].files, ElementsAre("oi.dll"));
}

}  // namespace
