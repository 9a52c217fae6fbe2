// driverlist as a user runs it, on a machine of three drivers.
#include <gmock/gmock.h>
#include <windows.h>

#include <memory>
#include <nlohmann/json.hpp>

#include "program.h"
#include "scratchmachine.h"

using test::DriverService;
using test::ProgramResult;
using test::ScratchFile;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;

namespace {

std::string DriverPath(const std::string& file) { return test::SystemDirectory() + "\\drivers\\" + file; }

ProgramResult Driverlist(const std::wstring& arguments, HANDLE output = nullptr) {
  return test::RunProgram("driverlist.exe", arguments, output);
}

std::string Expected(const std::wstring& file) { return test::FileContent(L"expected\\" + file); }

class Program : public test::ScratchMachine {
 protected:
  void SetUp() override {
    ScratchMachine::SetUp();
    if (IsSkipped()) return;
    if (test::SystemDirectory() != "C:\\windows\\system32")
      GTEST_SKIP() << "the expected files name the folders of Wine";
    m_machine = std::make_unique<Machine>();
  }

  test::TemporaryFolder folder;

 private:
  struct Machine {
    ScratchFile bus{DriverPath("OiBus.sys"), L"images\\full.sys"};
    ScratchFile german{DriverPath("OiGeraet.sys"), L"images\\codepage.sys"};
    ScratchFile plain{DriverPath("OiPlain.sys"), 4096};
    DriverService busService{"OiBus", "\\SystemRoot\\System32\\drivers\\OiBus.sys", SERVICE_BOOT_START};
    DriverService germanService{"OiGeraet", "System32\\drivers\\OiGeraet.sys", SERVICE_AUTO_START};
    DriverService plainService{"OiPlain", "OiPlain.sys", SERVICE_DISABLED};
    test::RegistryValue chipset{"SOFTWARE\\Intel\\InfInst", "Version", REG_SZ, "10.1.18793.8276"};
  };
  std::unique_ptr<Machine> m_machine;
};

TEST_F(Program, ListsRegisteredDriversAsATable) {
  const ProgramResult result = Driverlist(L"--mode registered");
  EXPECT_EQ(result.exitCode, 0u);
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(result.output, Expected(L"registered.txt"));
}

TEST_F(Program, ListsRegisteredDriversAsCsv) {
  const ProgramResult result = Driverlist(
      L"--mode registered --format csv --columns name,description,provider,path,file_version,"
      L"state,start_type,date,product_version,found_by_device");
  EXPECT_EQ(result.exitCode, 0u);
  EXPECT_EQ(result.output, Expected(L"registered.csv"));
}

TEST_F(Program, ListsRegisteredDriversAsJson) {
  const ProgramResult result = Driverlist(L"--mode registered --format json");
  EXPECT_EQ(result.exitCode, 0u);
  auto json = nlohmann::ordered_json::parse(result.output);
  EXPECT_THAT(json.at("time").get<std::string>(), MatchesRegex("\\d\\d\\d\\d-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\dZ"));
  EXPECT_NE(json.at("host"), "");
  json["time"] = "TIME";
  json["host"] = "HOST";
  // The size of an image is the linker's business.
  for (auto& driver : json["drivers"]) {
    if (driver["name"] == "OiBus.sys" || driver["name"] == "OiGeraet.sys") driver["size"] = "SIZE";
  }
  EXPECT_EQ(json.dump(2) + "\n", Expected(L"registered.json"));
}

TEST_F(Program, ListsRegisteredDriversAsAPage) {
  const ProgramResult result = Driverlist(L"--mode registered --format html --columns name,file_version");
  EXPECT_EQ(result.exitCode, 0u);
  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(result.output, testing::StartsWith("<!doctype html>\n"));
  EXPECT_THAT(result.output, HasSubstr("<dd>Registered services (registered)</dd>"));
  EXPECT_THAT(
      result.output,
      HasSubstr(
          "<tbody>\n"
          "<tr><th scope=\"row\" class=\"name\">OiBus.sys</th><td class=\"file_version\">6.2.9200.16384</td></tr>\n"
          "<tr><th scope=\"row\" class=\"name\">OiGeraet.sys</th>"));
}

TEST_F(Program, WritesTheSameToAFile) {
  const std::wstring file = folder.Path(L"\u0436 list.txt");
  const ProgramResult result = Driverlist(L"--mode registered --output \"" + file + L"\"");
  EXPECT_EQ(result.exitCode, 0u);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(test::FileContent(file), Expected(L"registered.txt"));
  EXPECT_THAT(folder.Files(), testing::ElementsAre(L"\u0436 list.txt"));
}

TEST_F(Program, SaysWhyAFileCannotBeWritten) {
  const ProgramResult result = Driverlist(L"--mode registered --output \"" + folder.Path(L"none\\list.txt") + L"\"");
  EXPECT_EQ(result.exitCode, 1u);
  EXPECT_EQ(result.output, "");
  EXPECT_THAT(result.errors, MatchesRegex("driverlist: cannot write .*none.list.txt: .+\n"));
  EXPECT_THAT(folder.Files(), IsEmpty());
}

TEST_F(Program, FailsWhenNobodyReadsItsOutput) {
  SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};
  HANDLE read = nullptr;
  HANDLE write = nullptr;
  ASSERT_TRUE(CreatePipe(&read, &write, &inherited, 0));
  CloseHandle(read);
  const ProgramResult result = Driverlist(L"--mode registered", write);
  CloseHandle(write);
  EXPECT_EQ(result.exitCode, 1u);
  EXPECT_THAT(result.errors, MatchesRegex("driverlist: cannot write the output: .+\n"));
}

TEST_F(Program, RefusesBadUsageInOneSentence) {
  const ProgramResult result = Driverlist(L"--mode everything");
  EXPECT_EQ(result.exitCode, 2u);
  EXPECT_EQ(result.output, "");
  EXPECT_THAT(result.errors, MatchesRegex("driverlist: .*everything.*\n"));
}

TEST_F(Program, PrintsHelpAndVersion) {
  const ProgramResult help = Driverlist(L"--help");
  EXPECT_EQ(help.exitCode, 0u);
  EXPECT_EQ(help.errors, "");
  EXPECT_THAT(help.output, HasSubstr("--mode"));
  const ProgramResult version = Driverlist(L"--version");
  EXPECT_EQ(version.exitCode, 0u);
  EXPECT_EQ(version.output, "driverlist " PROJECT_VERSION "\n");
}

TEST_F(Program, LogsToStandardErrorUpToALevel) {
  const ProgramResult result = Driverlist(L"--mode registered --log-level 1");
  EXPECT_EQ(result.exitCode, 0u);
  EXPECT_EQ(result.output, Expected(L"registered.txt"));
  EXPECT_THAT(result.errors, HasSubstr("Failed to open SOFTWARE\\WOW6432Node\\AMD\\AMD_Chipset_Drivers\\ in "));
  EXPECT_THAT(result.errors, testing::Not(HasSubstr("Start to list registered driver files.")));
  EXPECT_THAT(Driverlist(L"--mode registered --log-level 0").errors, IsEmpty());
}

TEST_F(Program, LogsToAFile) {
  const std::wstring file = folder.Path(L"log.txt");
  const ProgramResult result = Driverlist(L"--mode registered --log-file \"" + file + L"\"");
  EXPECT_EQ(result.exitCode, 0u);
  EXPECT_EQ(result.errors, "");
  const std::string log = test::FileContent(file);
  EXPECT_THAT(log, HasSubstr("Start to list registered driver files."));
  EXPECT_THAT(log, HasSubstr("DRIVERINFO.name=OiBus.sys DRIVERINFO.file_version=6.2.9200.16384"));
}

TEST_F(Program, SaysWhenTheLogFileCannotBeOpened) {
  const ProgramResult result = Driverlist(L"--mode registered --log-file \"" + folder.Path(L"a\"\"b") + L"\"");
  EXPECT_EQ(result.exitCode, 1u);
  EXPECT_EQ(result.output, "");
  EXPECT_THAT(result.errors, MatchesRegex("driverlist: cannot open the log file .+ for writing.\n"));
}

}  // namespace
