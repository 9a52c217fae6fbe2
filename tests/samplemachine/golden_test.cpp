// The sample machines, listed: the whole way from real devices, services, packages and registry keys to every document.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <numeric>
#include <regex>
#include <sstream>

#include "commands/commandtable.h"
#include "commands/options.h"
#include "driverinfo.h"
#include "formats/formats.h"
#include "inventory/inventory.h"
#include "logcapture.h"
#include "platform/encoding.h"
#include "platform/handles.h"
#include "program.h"
#include "scratchmachine.h"

using Json = nlohmann::ordered_json;
using Orvane::DriverData;
using Orvane::Utf8FromWide;
using Orvane::WideFromUtf8;
using test::ProgramResult;

namespace {

std::string Named(const std::string& name, const std::string& version) { return name + " " + version; }

/// `text` with what differs from run to run made the same, in forms that the schemas allow.
std::string WithoutPlace(std::string text) {
  const std::pair<std::string, std::string> members[] = {{"tool_version", "0.0.0"},
                                                         {"host", "HOST"},
                                                         {"host_id", "HOST-ID"},
                                                         {"windows", "0.0.0"},
                                                         {"time", "2000-01-01T00:00:00Z"}};
  for (const auto& [name, value] : members) {
    const std::regex member("\"" + name + "\":( ?)\"[^\"]*\"");
    text = std::regex_replace(text, member, "\"" + name + "\":$1\"" + value + "\"");
  }
  return std::regex_replace(text, std::regex("(^|\n)(old|new): .*"), "$1$2: -");
}

class SampleMachine : public test::ScratchMachine {
 protected:
  explicit SampleMachine(const char* machine) : m_machine(machine) {}

  void SetUp() override {
    ScratchMachine::SetUp();
    if (!IsSkipped()) Call("make");
  }
  void TearDown() override {
    if (!IsSkipped()) Call("remove");
  }

  std::string Expected(const std::string& extension) const {
    return test::FileContent(WideFromUtf8("expected\\" + m_machine + "." + extension));
  }

  /// What driverlist prints, on no machine and at no time in particular.
  static std::string Printed(const std::string& arguments, DWORD exitCode = 0) {
    const ProgramResult result = test::RunProgram("driverlist.exe", WideFromUtf8(arguments));
    EXPECT_EQ(result.exitCode, exitCode);
    EXPECT_EQ(result.errors, "");
    return WithoutPlace(result.output);
  }

  void IsPrintedAsExpected(const std::string& arguments, DWORD exitCode, const std::string& extension) const {
    EXPECT_EQ(Printed(arguments, exitCode), Expected(extension)) << arguments;
  }

  void IsListedAsExpected(const std::string& format, const std::string& extension) const {
    IsPrintedAsExpected("list --format " + format, 0, "list." + extension);
  }

  void LibraryListsAsExpected(const std::string& mode) const {
    IsPrintedAsExpected("list --format json --mode " + mode, 0, mode + ".json");
  }

  /// The content of the file that `snapshot` writes.
  static std::string Snapshot() {
    const test::TemporaryFolder folder;
    const std::wstring file = folder.Path(L"snapshot.json");
    EXPECT_EQ(Printed("snapshot \"" + Utf8FromWide(file) + "\""), "");
    return WithoutPlace(test::FileContent(file));
  }

  /// On a terminal of 80 columns, of which 79 are used.
  void FitsATerminal() const {
    const std::vector<inventory::Column> columns = driverlist::ParseCommandLine({}).options.value().columns;
    driverlist::Table table = driverlist::TableOf(inventory::Collect({}).records);
    std::vector<std::size_t> rows(table.rows.size());
    std::iota(rows.begin(), rows.end(), std::size_t{0});
    table = driverlist::PartOf(std::move(table), rows, columns);
    EXPECT_EQ(driverlist::FormatTable(table, {79, false}), Expected("terminal.txt"));
  }

  void IsExaminedAsExpected() const {
    IsPrintedAsExpected("health --no-verify", 1, "health.txt");
    IsPrintedAsExpected("health --no-verify --format json", 1, "health.json");
  }

  void FirstAndSecondCallsAreAsExpected() {
    std::vector<std::string> registered = ExpectedNames("registered");
    EXPECT_EQ(List(Orvane::ByDevice), ExpectedNames("by-device"));
    EXPECT_EQ(List(Orvane::ByDevice), ExpectedNames("by-device"));
    EXPECT_EQ(List(Orvane::Registered), registered);
    // From its cache, the service listing comes without the chipset packages.
    while (registered.back().find(".sys ") == std::string::npos) registered.pop_back();
    EXPECT_EQ(List(Orvane::Registered), registered);
    EXPECT_EQ(List(Orvane::All), ExpectedNames("all"));
    EXPECT_EQ(List(Orvane::All), ExpectedNames("all"));
  }

  void LogOfAWholeRequestIsAsExpected() {
    test::LogCapture log;
    List(Orvane::All);
    std::ostringstream lines;
    for (const test::LogLine& line : log.Take()) lines << line.level << " " << line.text << "\n";
    EXPECT_EQ(lines.str(), Expected("all.log"));
  }

 private:
  std::vector<std::string> List(Orvane::DriverInfoSetType mode) {
    std::vector<DriverData> drivers;
    EXPECT_EQ(m_info.list_drivers(drivers, mode), 0);
    std::vector<std::string> names;
    for (const DriverData& driver : drivers) names.push_back(Named(driver.name, driver.file_version));
    return names;
  }

  /// The records of the expected file, in short.
  std::vector<std::string> ExpectedNames(const std::string& mode) const {
    std::vector<std::string> names;
    const Json expected = Json::parse(Expected(mode + ".json"));
    for (const Json& driver : expected.at("drivers"))
      names.push_back(Named(driver.at("name"), driver.at("file_version")));
    return names;
  }

  void Call(const std::string& command) const {
    const ProgramResult result =
        test::RunProgram("samplemachine.exe", WideFromUtf8(command + " " + m_machine + ".json"));
    ASSERT_EQ(result.exitCode, 0u) << result.errors;
  }

  std::string m_machine;
  Orvane::DriverInfo m_info;
};

struct IntelLaptop : SampleMachine {
  IntelLaptop() : SampleMachine("intel-laptop") {}
};

struct AmdServer : SampleMachine {
  AmdServer() : SampleMachine("amd-server") {}
};

struct World : SampleMachine {
  World() : SampleMachine("world") {}
};

TEST_F(IntelLaptop, IsListedByDevice) { LibraryListsAsExpected("by-device"); }
TEST_F(IntelLaptop, IsListedAsRegistered) { LibraryListsAsExpected("registered"); }
TEST_F(IntelLaptop, IsListedByTheLibraryAltogether) { LibraryListsAsExpected("all"); }
TEST_F(IntelLaptop, IsListedByVersion) {
  IsPrintedAsExpected("--mode registered --sort file_version --format jsonl", 0, "registered.jsonl");
}
TEST_F(IntelLaptop, IsTheSameFromTheCachesOfTheLibrary) { FirstAndSecondCallsAreAsExpected(); }
TEST_F(IntelLaptop, IsLogged) { LogOfAWholeRequestIsAsExpected(); }
TEST_F(IntelLaptop, IsListedInJson) { IsListedAsExpected("json", "json"); }
TEST_F(IntelLaptop, IsListedInJsonLines) { IsListedAsExpected("jsonl", "jsonl"); }
TEST_F(IntelLaptop, IsListedInCsv) { IsListedAsExpected("csv", "csv"); }
TEST_F(IntelLaptop, IsListedInMarkdown) { IsListedAsExpected("markdown", "md"); }
TEST_F(IntelLaptop, IsListedInATable) { IsListedAsExpected("table", "txt"); }
TEST_F(IntelLaptop, IsReadableOnATerminal) { FitsATerminal(); }
TEST_F(IntelLaptop, IsKeptInASnapshot) { EXPECT_EQ(Snapshot(), Expected("snapshot.json")); }
TEST_F(IntelLaptop, IsExamined) { IsExaminedAsExpected(); }

TEST_F(AmdServer, IsListedByDevice) { LibraryListsAsExpected("by-device"); }
TEST_F(AmdServer, IsListedAsRegistered) { LibraryListsAsExpected("registered"); }
TEST_F(AmdServer, IsListedByTheLibraryAltogether) { LibraryListsAsExpected("all"); }
TEST_F(AmdServer, IsListedByVersion) {
  IsPrintedAsExpected("--mode registered --sort file_version --format jsonl", 0, "registered.jsonl");
}
TEST_F(AmdServer, IsTheSameFromTheCachesOfTheLibrary) { FirstAndSecondCallsAreAsExpected(); }
TEST_F(AmdServer, IsLogged) { LogOfAWholeRequestIsAsExpected(); }
TEST_F(AmdServer, IsListedInJson) { IsListedAsExpected("json", "json"); }
TEST_F(AmdServer, IsListedInJsonLines) { IsListedAsExpected("jsonl", "jsonl"); }
TEST_F(AmdServer, IsListedInCsv) { IsListedAsExpected("csv", "csv"); }
TEST_F(AmdServer, IsListedInMarkdown) { IsListedAsExpected("markdown", "md"); }
TEST_F(AmdServer, IsListedInATable) { IsListedAsExpected("table", "txt"); }
TEST_F(AmdServer, IsReadableOnATerminal) { FitsATerminal(); }
TEST_F(AmdServer, IsKeptInASnapshot) { EXPECT_EQ(Snapshot(), Expected("snapshot.json")); }
TEST_F(AmdServer, IsExamined) { IsExaminedAsExpected(); }

TEST_F(World, IsListedByDevice) { LibraryListsAsExpected("by-device"); }
TEST_F(World, IsListedAsRegistered) { LibraryListsAsExpected("registered"); }
TEST_F(World, IsListedByTheLibraryAltogether) { LibraryListsAsExpected("all"); }
TEST_F(World, IsTheSameFromTheCachesOfTheLibrary) { FirstAndSecondCallsAreAsExpected(); }
TEST_F(World, IsListedInJson) { IsListedAsExpected("json", "json"); }
TEST_F(World, IsListedInJsonLines) { IsListedAsExpected("jsonl", "jsonl"); }
TEST_F(World, IsListedInCsv) { IsListedAsExpected("csv", "csv"); }
TEST_F(World, IsListedInMarkdown) { IsListedAsExpected("markdown", "md"); }
TEST_F(World, IsListedInATable) { IsListedAsExpected("table", "txt"); }
TEST_F(World, IsReadableOnATerminal) { FitsATerminal(); }
TEST_F(World, IsKeptInASnapshot) { EXPECT_EQ(Snapshot(), Expected("snapshot.json")); }
TEST_F(World, IsExamined) { IsExaminedAsExpected(); }

// --- What the help and the manual show.

/// The current folder, for a time.
class CurrentFolder {
 public:
  explicit CurrentFolder(const std::wstring& folder) : m_former(std::filesystem::current_path()) {
    std::filesystem::current_path(folder);
  }
  ~CurrentFolder() { std::filesystem::current_path(m_former); }
  CurrentFolder(const CurrentFolder&) = delete;
  CurrentFolder& operator=(const CurrentFolder&) = delete;

 private:
  std::filesystem::path m_former;
};

/// A call of driverlist, and what it is shown to print.
struct ShownCall {
  std::string arguments;
  std::string printed;
};

/// What is between "`driverlist " and "`" in a text in Markdown, unless it has words for what the reader puts in.
std::vector<std::string> CallsInSentences(const std::string& markdown) {
  const std::regex call("`driverlist ([^`]*)`");
  const std::regex placeholder("[A-Z]{2}");
  std::vector<std::string> calls;
  for (std::sregex_iterator found(markdown.begin(), markdown.end(), call), end; found != end; ++found) {
    const std::string arguments = (*found)[1];
    if (!std::regex_search(arguments, placeholder)) calls.push_back(arguments);
  }
  return calls;
}

/// The calls in the blocks of a text in Markdown: lines that begin with "$ driverlist", each with what follows.
std::vector<ShownCall> CallsInBlocks(const std::string& markdown) {
  const std::string prompt = "$ driverlist ";
  std::istringstream lines(markdown);
  std::vector<ShownCall> calls;
  bool isOutput = false;
  for (std::string line; std::getline(lines, line);) {
    if (line.compare(0, prompt.size(), prompt) == 0) {
      calls.push_back({line.substr(prompt.size()), ""});
      isOutput = true;
    } else if (line.compare(0, 3, "```") == 0 || line.compare(0, 2, "$ ") == 0) {
      isOutput = false;
    } else if (isOutput) {
      calls.back().printed += line + "\n";
    }
  }
  return calls;
}

/// Runs it; 1 is also what diff and health say that something was found by.
std::string PrintedBy(const std::string& arguments) {
  const ProgramResult result = test::RunProgram("driverlist.exe", WideFromUtf8(arguments));
  EXPECT_LE(result.exitCode, 1u) << arguments;
  EXPECT_TRUE(result.errors.empty() || result.errors == "No drivers match.\n") << arguments << ": " << result.errors;
  return WithoutPlace(result.output);
}

std::string PolicyOfTheManual() { return test::FileContent(L"..\\..\\docs\\policies\\workstation.json"); }

TEST_F(IntelLaptop, RunsEveryExampleOfTheHelp) {
  const test::TemporaryFolder folder;
  test::WriteText(folder.Path(L"policy.json"), PolicyOfTheManual());
  const CurrentFolder current(folder.Path(L""));
  // Others read the snapshots and baselines of these.
  for (const driverlist::Command command : {driverlist::Command::Snapshot, driverlist::Command::Baseline}) {
    for (const driverlist::Example& example : driverlist::EntryOf(command).examples) {
      PrintedBy(std::string(example.arguments));
    }
  }
  for (const driverlist::CommandEntry& command : driverlist::CommandTable()) {
    for (const driverlist::Example& example : command.examples) PrintedBy(std::string(example.arguments));
  }
  std::vector<std::wstring> files = folder.Files();
  std::sort(files.begin(), files.end());
  EXPECT_THAT(files,
              testing::ElementsAre(L"accepted.json", L"after.json", L"before.json", L"changes.json", L"drivers.html",
                                   L"findings.json", L"lines.jsonl", L"policy.json", L"policy.xml"));
}

std::string Manual() { return test::FileContent(L"..\\..\\docs\\driverlist.md"); }

TEST_F(IntelLaptop, PrintsWhatTheManualShows) {
  const std::vector<ShownCall> calls = CallsInBlocks(Manual());
  EXPECT_GE(calls.size(), 10u);
  const test::TemporaryFolder folder;
  test::WriteText(folder.Path(L"workstation.json"), PolicyOfTheManual());
  const CurrentFolder current(folder.Path(L""));
  for (const ShownCall& call : calls) {
    std::string printed = PrintedBy(call.arguments);
    // Lines of CSV end otherwise than those of the manual.
    printed.erase(std::remove(printed.begin(), printed.end(), '\r'), printed.end());
    // What a comparison shows happened meanwhile; DiffersFromASnapshotByWhatChanged makes it happen.
    if (call.arguments.compare(0, 5, "diff ") == 0) continue;
    EXPECT_EQ(printed, WithoutPlace(call.printed)) << call.arguments;
  }
}

TEST_F(IntelLaptop, RunsWhatTheManualSays) {
  const std::vector<std::string> calls = CallsInSentences(Manual());
  EXPECT_GE(calls.size(), 5u);
  const test::TemporaryFolder folder;
  const CurrentFolder current(folder.Path(L""));
  for (const std::string& call : calls) PrintedBy(call);
}

// --- What changed.

void Stop(const char* service) {
  const Orvane::ServiceHandle manager(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_CONNECT));
  const Orvane::ServiceHandle opened(OpenServiceA(manager.get(), service, SERVICE_STOP | SERVICE_QUERY_STATUS));
  SERVICE_STATUS status{};
  ASSERT_TRUE(ControlService(opened.get(), SERVICE_CONTROL_STOP, &status));
  while (status.dwCurrentState != SERVICE_STOPPED && QueryServiceStatus(opened.get(), &status)) Sleep(10);
}

/// Another version of the driver at `path`, as an installer would bring it, of 120 KiB.
void Upgrade(const std::string& path, const WORD (&fileVersion)[4], const wchar_t* company,
             const wchar_t* description) {
  test::VersionSettings version;
  std::copy(std::begin(fileVersion), std::end(fileVersion), version.file);
  version.texts = {{L"CompanyName", company}, {L"FileDescription", description}};
  test::SetVersionResource(path, test::VersionResourceBytes(version));
  std::filesystem::resize_file(path, 120 << 10);
}

/// A newer version of the package oem0.inf: its INF, the device installed from it, and the image of its service.
void UpgradeNetworkAdapter() {
  Stop("nlnet");
  Upgrade(test::DriverPath("nlnet.sys"), {12, 19, 3, 1}, L"Northlight Networks", L"Northlight Gigabit adapter driver");
  test::StartDriverService("nlnet");

  const std::string inf = test::InfDirectory() + "\\oem0.inf";
  const std::string former = test::FileContent(WideFromUtf8(inf));
  std::ofstream(inf, std::ios::binary) << std::regex_replace(former, std::regex("DriverVer=.*\r"),
                                                             "DriverVer=02/29/2024,12.19.3.1\r");

  test::DeviceSettings device;
  device.instanceId = "PCI\\VEN_8086&DEV_15FB&SUBSYS_0A5C1028&REV_20\\3&11583659&0&FE";
  device.description = "Northlight Gigabit adapter";
  device.manufacturer = "Northlight Networks";
  device.className = "Net";
  device.hardwareIds = {"PCI\\VEN_8086&DEV_15FB&SUBSYS_0A5C1028&REV_20"};
  device.service = "nlnet";
  device.package = test::InstalledPackage{"oem0.inf", "12.19.3.1", "2-29-2024"};
  test::RemoveDevice(device.instanceId);
  test::CreateDevice(device);
}

/// Gives a service another start type.
void Configure(const char* service, DWORD startType) {
  const Orvane::ServiceHandle manager(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_CONNECT));
  const Orvane::ServiceHandle opened(OpenServiceA(manager.get(), service, SERVICE_CHANGE_CONFIG));
  ASSERT_TRUE(ChangeServiceConfigA(opened.get(), SERVICE_NO_CHANGE, startType, SERVICE_NO_CHANGE, nullptr, nullptr,
                                   nullptr, nullptr, nullptr, nullptr, nullptr));
}

TEST_F(IntelLaptop, DiffersFromASnapshotByWhatChanged) {
  const test::TemporaryFolder folder;
  const std::string snapshot = Utf8FromWide(folder.Path(L"before.json"));
  EXPECT_EQ(Printed("snapshot \"" + snapshot + "\""), "");

  Stop("TonartAudio");
  Upgrade(test::DriverPath("smpaud.sys"), {6, 0, 10001, 0}, L"Tonart Audio", L"High definition audio driver");
  UpgradeNetworkAdapter();
  Configure("mdbeep", SERVICE_AUTO_START);
  test::RemoveDevice("PCI\\VEN_8086&DEV_7E4C&SUBSYS_0A5C1028&REV_20\\3&11583659&0&2D");
  test::SetRegistryText("SOFTWARE\\Intel\\InfInst", "Version", "10.1.18000.1");
  const test::ScratchFile image(test::DriverPath("smpnew.sys"), L"images\\full.sys");
  const test::DriverService added("smpnew", "\\SystemRoot\\System32\\drivers\\smpnew.sys");
  IsPrintedAsExpected("diff \"" + snapshot + "\" live", 1, "diff.txt");
  IsPrintedAsExpected("diff \"" + snapshot + "\" live --format json", 1, "diff.json");
}

}  // namespace
