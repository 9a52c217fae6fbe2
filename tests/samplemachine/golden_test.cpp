// The sample machines, listed: the whole way from real devices, services, packages and registry keys to the records.
#include <gmock/gmock.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>

#include "driverinfo.h"
#include "formats.h"
#include "handles.h"
#include "logcapture.h"
#include "options.h"
#include "program.h"
#include "records.h"
#include "scratchmachine.h"

using Json = nlohmann::ordered_json;
using Orvane::DriverData;
using test::ProgramResult;

namespace {

std::string Expected(const std::string& file) {
  const std::string path = "expected\\" + file;
  return test::FileContent(std::wstring(path.begin(), path.end()));
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

  /// What driverlist prints, without the time and the host.
  std::string Listed(const std::string& mode) const {
    const ProgramResult result =
        test::RunProgram("driverlist.exe", L"--format json --mode " + std::wstring(mode.begin(), mode.end()));
    EXPECT_EQ(result.exitCode, 0u);
    EXPECT_EQ(result.errors, "");
    Json json = Json::parse(result.output);
    json.erase("time");
    json.erase("host");
    return json.dump(1) + "\n";
  }

  std::string ExpectedList(const std::string& mode) const { return Expected(m_machine + "." + mode + ".json"); }

  /// The records of the expected file, in short.
  std::vector<std::string> ExpectedNames(const std::string& mode) const {
    std::vector<std::string> names;
    const Json expected = Json::parse(ExpectedList(mode));
    for (const Json& driver : expected.at("drivers"))
      names.push_back(Named(driver.at("name"), driver.at("file_version")));
    return names;
  }

  std::vector<std::string> List(Orvane::DriverInfoSetType mode) {
    std::vector<DriverData> drivers;
    EXPECT_EQ(m_info.list_drivers(drivers, mode), 0);
    std::vector<std::string> names;
    for (const DriverData& driver : drivers) names.push_back(Named(driver.name, driver.file_version));
    return names;
  }

  /// What driverlist prints, the time and the host given as "TIME" and "HOST".
  std::string Printed(const std::string& arguments, DWORD exitCode) const {
    const ProgramResult result = test::RunProgram("driverlist.exe", std::wstring(arguments.begin(), arguments.end()));
    EXPECT_EQ(result.exitCode, exitCode);
    EXPECT_EQ(result.errors, "");
    return WithoutPlace(result.output);
  }

  void IsPrintedAsExpected(const std::string& arguments, DWORD exitCode, const std::string& extension) const {
    EXPECT_EQ(Printed(arguments, exitCode), Expected(m_machine + "." + extension)) << arguments;
  }

  /// On a terminal of 80 columns, of which 79 are used.
  void FitsATerminal() const {
    driverlist::Options options = driverlist::ParseCommandLine({}).options.value();
    std::vector<DriverData> drivers;
    Orvane::DriverInfo().list_drivers(drivers, Orvane::All);
    options.columns.pop_back();
    EXPECT_EQ(driverlist::FormatTable(drivers, options.columns, 79), Expected(m_machine + ".terminal.txt"));
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
    EXPECT_EQ(lines.str(), Expected(m_machine + ".all.log"));
  }

 private:
  /// Members "time" and "host", the version of Windows, which Wine makes up, and that of the program.
  static std::string WithoutPlace(const std::string& text) {
    static const std::regex members("\"(host|time|windows|tool_version)\":( ?)\"[^\"]*\"");
    static const std::regex lines("(old|new): .*");
    return std::regex_replace(std::regex_replace(text, members, "\"$1\":$2\"-\""), lines, "$1: -");
  }

  static std::string Named(const std::string& name, const std::string& version) { return name + " " + version; }

  void Call(const std::string& command) const {
    const std::string arguments = command + " " + m_machine + ".json";
    const ProgramResult result =
        test::RunProgram("samplemachine.exe", std::wstring(arguments.begin(), arguments.end()));
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

TEST_F(IntelLaptop, ListsByDevice) { EXPECT_EQ(Listed("by-device"), ExpectedList("by-device")); }
TEST_F(IntelLaptop, ListsRegistered) { EXPECT_EQ(Listed("registered"), ExpectedList("registered")); }
TEST_F(IntelLaptop, ListsAll) { EXPECT_EQ(Listed("all"), ExpectedList("all")); }
TEST_F(IntelLaptop, ListsTheSameFromItsCaches) { FirstAndSecondCallsAreAsExpected(); }
TEST_F(IntelLaptop, LogsAWholeRequest) { LogOfAWholeRequestIsAsExpected(); }

TEST_F(IntelLaptop, IsListedOneObjectPerLine) {
  IsPrintedAsExpected("--mode registered --sort file_version --format jsonl", 0, "registered.jsonl");
}
TEST_F(IntelLaptop, IsListedInMarkdown) {
  IsPrintedAsExpected("--format markdown --columns name,file_version,provider,path", 0, "all.md");
}
TEST_F(IntelLaptop, IsReadableOnATerminal) { FitsATerminal(); }
TEST_F(IntelLaptop, IsExamined) {
  IsPrintedAsExpected("health", 1, "health.txt");
  IsPrintedAsExpected("health --format json", 1, "health.json");
}

/// The driver's next version, as an installer would bring it, of 120 KiB.
void Upgrade(const std::string& path) {
  test::VersionSettings version;
  const WORD words[4] = {6, 0, 10001, 0};
  std::copy(std::begin(words), std::end(words), version.file);
  version.texts = {{L"CompanyName", L"Tonart Audio"}, {L"FileDescription", L"High definition audio driver"}};
  test::SetVersionResource(path, test::VersionResourceBytes(version));
  std::filesystem::resize_file(path, 120 << 10);
}

void Stop(const char* service) {
  const Orvane::ServiceHandle manager(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_CONNECT));
  const Orvane::ServiceHandle opened(OpenServiceA(manager.get(), service, SERVICE_STOP | SERVICE_QUERY_STATUS));
  SERVICE_STATUS status{};
  ASSERT_TRUE(ControlService(opened.get(), SERVICE_CONTROL_STOP, &status));
  while (status.dwCurrentState != SERVICE_STOPPED && QueryServiceStatus(opened.get(), &status)) Sleep(10);
}

/// Gives a service another start type.
void Configure(const char* service, DWORD startType) {
  const Orvane::ServiceHandle manager(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_CONNECT));
  const Orvane::ServiceHandle opened(OpenServiceA(manager.get(), service, SERVICE_CHANGE_CONFIG));
  ASSERT_TRUE(ChangeServiceConfigA(opened.get(), SERVICE_NO_CHANGE, startType, SERVICE_NO_CHANGE, nullptr, nullptr,
                                   nullptr, nullptr, nullptr, nullptr, nullptr));
}

TEST_F(IntelLaptop, TellsWhatChangedSinceASnapshot) {
  const test::TemporaryFolder folder;
  std::string snapshot;
  for (const wchar_t c : folder.Path(L"before.json")) snapshot += static_cast<char>(c);
  EXPECT_EQ(Printed("snapshot \"" + snapshot + "\"", 0), "");
  EXPECT_EQ(Printed("diff \"" + snapshot + "\" live", 0), "old: -\nnew: -\n26 the same\n");

  Stop("TonartAudio");
  Upgrade(test::SystemDirectory() + "\\drivers\\smpaud.sys");
  Configure("nlnet", SERVICE_AUTO_START);
  test::RemoveDevice("PCI\\VEN_8086&DEV_7E4C&SUBSYS_0A5C1028&REV_20\\3&11583659&0&2D");
  test::SetRegistryValue("SOFTWARE\\Intel\\InfInst", "Version", REG_SZ, "10.1.18000.1");
  const test::ScratchFile image(test::SystemDirectory() + "\\drivers\\smpnew.sys", L"images\\full.sys");
  const test::DriverService added("smpnew", "\\SystemRoot\\System32\\drivers\\smpnew.sys");
  IsPrintedAsExpected("diff \"" + snapshot + "\" live", 1, "diff.txt");
  IsPrintedAsExpected("diff \"" + snapshot + "\" live --format json", 1, "diff.json");
}

TEST_F(AmdServer, ListsByDevice) { EXPECT_EQ(Listed("by-device"), ExpectedList("by-device")); }
TEST_F(AmdServer, ListsRegistered) { EXPECT_EQ(Listed("registered"), ExpectedList("registered")); }
TEST_F(AmdServer, ListsAll) { EXPECT_EQ(Listed("all"), ExpectedList("all")); }
TEST_F(AmdServer, ListsTheSameFromItsCaches) { FirstAndSecondCallsAreAsExpected(); }
TEST_F(AmdServer, LogsAWholeRequest) { LogOfAWholeRequestIsAsExpected(); }

TEST_F(AmdServer, IsListedOneObjectPerLine) {
  IsPrintedAsExpected("--mode registered --sort file_version --format jsonl", 0, "registered.jsonl");
}
TEST_F(AmdServer, IsListedInMarkdown) {
  IsPrintedAsExpected("--format markdown --columns name,file_version,provider,path", 0, "all.md");
}
TEST_F(AmdServer, IsReadableOnATerminal) { FitsATerminal(); }
TEST_F(AmdServer, IsExamined) {
  IsPrintedAsExpected("health", 1, "health.txt");
  IsPrintedAsExpected("health --format json", 1, "health.json");
}

}  // namespace
