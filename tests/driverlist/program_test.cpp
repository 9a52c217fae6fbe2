// driverlist as a user runs it, on a machine of three drivers.
#include <gmock/gmock.h>
#include <windows.h>

#include <memory>
#include <nlohmann/json.hpp>

#include "platform/encoding.h"
#include "platform/handles.h"
#include "program.h"
#include "scratchmachine.h"
#include "terminal/output.h"

using test::Driverlist;
using test::DriverService;
using test::ProgramResult;
using test::ScratchFile;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::StartsWith;

namespace {

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
    ScratchFile bus{test::DriverPath("OiBus.sys"), L"images\\full.sys"};
    ScratchFile german{test::DriverPath("OiGeraet.sys"), L"images\\codepage.sys"};
    ScratchFile plain{test::DriverPath("OiPlain.sys"), 4096};
    DriverService busService{"OiBus", "\\SystemRoot\\System32\\drivers\\OiBus.sys", SERVICE_BOOT_START};
    DriverService germanService{"OiGeraet", "System32\\drivers\\OiGeraet.sys", SERVICE_AUTO_START};
    DriverService plainService{"OiPlain", "System32\\drivers\\OiPlain.sys", SERVICE_DISABLED};
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

/// `document` with what differs from machine to machine and from day to day replaced by names.
std::string Steady(const std::string& document) {
  auto json = nlohmann::ordered_json::parse(document);
  EXPECT_THAT(json.at("time").get<std::string>(), MatchesRegex("\\d\\d\\d\\d-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\dZ"));
  EXPECT_EQ(json.at("tool_version"), PROJECT_VERSION);
  const std::pair<const char*, const char*> names[] = {{"tool_version", "TOOL_VERSION"},
                                                       {"host", "HOST"},
                                                       {"host_id", "HOST_ID"},
                                                       {"windows", "WINDOWS"},
                                                       {"time", "TIME"}};
  for (const auto& [member, name] : names) {
    EXPECT_NE(json.at(member), "");
    json[member] = name;
  }
  // The size of an image is the linker's business.
  for (auto& driver : json["drivers"]) {
    if (driver["name"] == "OiBus.sys" || driver["name"] == "OiGeraet.sys") driver["size"] = "SIZE";
  }
  return json.dump(2) + "\n";
}

TEST_F(Program, ListsRegisteredDriversAsJson) {
  const ProgramResult result = Driverlist(L"--mode registered --format json");
  EXPECT_EQ(result.exitCode, 0u);
  EXPECT_EQ(Steady(result.output), Expected(L"registered.json"));
}

TEST_F(Program, ListsTheInventoryAsJson) {
  const ProgramResult result = Driverlist(L"list --kind service,chipset --format json");
  EXPECT_EQ(result.exitCode, 0u);
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(Steady(result.output), Expected(L"inventory.json"));
}

TEST_F(Program, ListsTheInventoryAsATable) {
  const ProgramResult result = Driverlist(L"");
  EXPECT_EQ(result.exitCode, 0u);
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(result.output, Expected(L"inventory.txt")) << "Wine's own display adapter among it";
}

TEST_F(Program, ListsWhatIsChosen) {
  const auto names = [](const std::wstring& arguments) {
    return Driverlist(L"--columns name --format csv " + arguments).output;
  };
  EXPECT_EQ(names(L"--kind chipset,service --match oi*"), "name\r\nOiBus.sys\r\nOiGeraet.sys\r\nOiPlain.sys\r\n");
  EXPECT_EQ(names(L"--kind chipset"), "name\r\nintel_chipset\r\n");
  EXPECT_EQ(names(L"--kind service --where size=4096"), "name\r\nOiPlain.sys\r\n");
  EXPECT_EQ(names(L"--kind service --sort version"), "name\r\nOiPlain.sys\r\nOiGeraet.sys\r\nOiBus.sys\r\n");
}

TEST_F(Program, LeavesOutTheMakerOfWindows) {
  const ScratchFile image(test::DriverPath("OiInbox.sys"), L"images\\full.sys");
  test::VersionSettings version;
  version.texts = {{L"CompanyName", L"Microsoft Corporation"}};
  test::SetVersionResource(image.Path(), test::VersionResourceBytes(version));
  const DriverService service("OiInbox", "System32\\drivers\\OiInbox.sys");
  const std::wstring list = L"--kind service --columns name --format csv";
  EXPECT_THAT(Driverlist(list).output, HasSubstr("OiInbox.sys"));
  EXPECT_EQ(Driverlist(list + L" --third-party").output, "name\r\nOiBus.sys\r\nOiGeraet.sys\r\nOiPlain.sys\r\n");
}

TEST_F(Program, ReadsNamesOfEveryScript) {
  const ScratchFile image(test::DriverPath("\u0442\u0435\u0441\u0442.sys"), L"images\\full.sys");
  test::VersionSettings version;
  version.file[0] = 7;
  version.texts = {{L"CompanyName", L"\u65E5\u672C\u8A9E"}, {L"FileDescription", L"\U0001F680 \u0416"}};
  test::SetVersionResource(image.Path(), test::VersionResourceBytes(version));
  const DriverService service("Oi\u0416", "\\SystemRoot\\System32\\drivers\\\u0442\u0435\u0441\u0442.sys");
  const auto drivers = [](const std::wstring& arguments) {
    return nlohmann::ordered_json::parse(Driverlist(arguments + L" --format json").output).at("drivers");
  };
  auto record = drivers(L"list --where service=Oi\u0436");
  ASSERT_EQ(record.size(), 1u);
  record[0].erase("size");
  EXPECT_EQ(record[0].dump(2), R"({
  "kind": "service",
  "name": "тест.sys",
  "description": "🚀 Ж",
  "provider": "日本語",
  "version": "7.0.0.0",
  "product_version": "0.0.0.0",
  "version_key": "b7aaa",
  "service": "OiЖ",
  "path": "C:\\windows\\System32\\drivers\\тест.sys",
  "state": "Stopped",
  "start_type": "Manual",
  "image_time": ")" + record[0].value("image_time", "no time") +
                                   R"("
})");
  EXPECT_EQ(
      drivers(L"list --mode registered --where name=\u0442* --columns name,description,provider,path,file_version")
          .dump(2),
      R"([
  {
    "name": "тест.sys",
    "description": "🚀 Ж",
    "provider": "日本語",
    "path": "C:\\windows\\system32\\drivers\\тест.sys",
    "file_version": "7.0.0.0"
  }
])");
  EXPECT_EQ(Driverlist(L"--where service=Oi* --where version=*.*.*.* --columns name,provider,version").output,
            "name          provider         version\n"
            "OiBus.sys     Example Systems  6.2.9200.16384\n"
            "OiGeraet.sys  M\u00FCller Ger\u00E4te    4.0.0.0\n"
            "\u0442\u0435\u0441\u0442.sys      \u65E5\u672C\u8A9E           7.0.0.0\n");
}

TEST_F(Program, IdentifiesTheMachineAsTheUserSays) {
  const auto json = nlohmann::json::parse(Driverlist(L"--mode registered --format json --host-id \"\u0436 7\"").output);
  EXPECT_EQ(json.at("host_id"), "\u0436 7");
  EXPECT_EQ(nlohmann::json::parse(Driverlist(L"--format json --host-id x").output).at("host_id"), "x");
}

TEST_F(Program, MakesCsvFitForSpreadsheets) {
  const ScratchFile image(test::DriverPath("OiSum.sys"), L"images\\full.sys");
  test::VersionSettings version;
  version.texts = {{L"CompanyName", L"=1+1"}};
  test::SetVersionResource(image.Path(), test::VersionResourceBytes(version));
  const DriverService service("OiSum", "System32\\drivers\\OiSum.sys");
  const std::wstring list = L"--where name=oisum* --columns provider --format csv";
  EXPECT_EQ(Driverlist(list).output, "provider\r\n'=1+1\r\n");
  EXPECT_EQ(Driverlist(list + L" --raw --bom").output, "\xEF\xBB\xBFprovider\r\n=1+1\r\n");
}

TEST_F(Program, ListsRegisteredDriversAsAPage) {
  const ProgramResult result = Driverlist(L"--mode registered --format html --columns name,file_version");
  EXPECT_EQ(result.exitCode, 0u);
  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(result.output, StartsWith("<!doctype html>\n"));
  EXPECT_THAT(result.output, HasSubstr("registered"));
  EXPECT_THAT(result.output, HasSubstr("6.2.9200.16384"));
  EXPECT_THAT(result.output, testing::Not(HasSubstr("Running services"))) << "it knows no inventory to sum up";
}

TEST_F(Program, ListsTheInventoryAsAPage) {
  const ProgramResult result = Driverlist(L"--kind service --format html");
  EXPECT_EQ(result.exitCode, 0u);
  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(result.output, StartsWith("<!doctype html>\n"));
  EXPECT_THAT(result.output, HasSubstr("OiPlain.sys"));
  EXPECT_THAT(result.output, HasSubstr("Running services"));
  EXPECT_THAT(result.output, testing::Not(HasSubstr("intel_chipset")));
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
  const ProgramResult result = Driverlist(L"--mode registered", test::UnreadPipe().get());
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
  const ProgramResult result = Driverlist(L"--mode registered --log-file \"" + folder.Path(L"none\\log.txt") + L"\"");
  EXPECT_EQ(result.exitCode, 1u);
  EXPECT_EQ(result.output, "");
  EXPECT_THAT(result.errors, MatchesRegex("driverlist: cannot open the log file .*none.log\\.txt: .+\n"));
  EXPECT_EQ(GetFileAttributesW(folder.Path(L"none").c_str()), INVALID_FILE_ATTRIBUTES) << "it makes no folders";
}

TEST_F(Program, SaysWhenTheLogFileCannotBeWritten) {
  constexpr wchar_t full[] = L"Z:\\dev\\full";
  if (!Orvane::FileHandle(CreateFileW(full, GENERIC_WRITE, FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr))) {
    GTEST_SKIP() << "there is no device that is full";
  }
  const ProgramResult result = Driverlist(std::wstring(L"--mode registered --log-file ") + full);
  EXPECT_EQ(result.exitCode, 1u);
  EXPECT_EQ(result.output, Expected(L"registered.txt")) << "the list is there all the same";
  EXPECT_THAT(result.errors, MatchesRegex("driverlist: cannot write the log file Z:.dev.full: .+\n"));
}

TEST_F(Program, SaysOneThingWhenNeitherFileNorLogCanBeWritten) {
  if (!test::IsWine()) GTEST_SKIP() << "there is no device that is full";
  const ProgramResult result =
      Driverlist(L"snapshot \"" + folder.Path(L"none\\now.json") + L"\" --log-file Z:\\dev\\full");
  EXPECT_EQ(result.exitCode, 1u);
  EXPECT_THAT(result.errors, MatchesRegex("driverlist: cannot write .*none.now.json: .+\n"));
}

TEST_F(Program, ReportsThatItIsOutOfMemory) {
  const std::wstring snapshot = folder.Path(L"old.json");
  EXPECT_EQ(driverlist::WriteFileWhole(Orvane::Utf8FromWide(snapshot),
                                       R"({"kind": "driverlist snapshot", "schema_version": 2, "drivers": []})"),
            "");
  const std::pair<std::wstring, DWORD> commands[] = {{L"", 1},
                                                     {L"--mode all", 1},
                                                     {L"snapshot \"" + folder.Path(L"new.json") + L"\"", 1},
                                                     {L"health", 2},
                                                     {L"diff \"" + snapshot + L"\" live", 2}};
  for (const auto& [arguments, exitCode] : commands) {
    const ProgramResult result = test::RunProgram("nomemory\\driverlist.exe", arguments);
    EXPECT_EQ(result.exitCode, exitCode);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "driverlist: out of memory.\n");
  }
  EXPECT_THAT(folder.Files(), testing::ElementsAre(L"old.json"));
}

TEST_F(Program, EchoesNoControlCharacter) {
  const ProgramResult result = Driverlist(L"--mode \x1B[31m");
  EXPECT_EQ(result.exitCode, 2u);
  EXPECT_EQ(result.errors, "driverlist: --mode: \"[U+001B][31m\" is not one of all, by-device, registered.\n");
  EXPECT_EQ(Driverlist(L"\u202Esys").errors, "driverlist: unknown argument: [U+202E]sys.\n");
}

}  // namespace
