// The sample machines, listed: the whole way from real devices, services, packages and registry keys to the records.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "driverinfo.h"
#include "logcapture.h"
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

TEST_F(AmdServer, ListsByDevice) { EXPECT_EQ(Listed("by-device"), ExpectedList("by-device")); }
TEST_F(AmdServer, ListsRegistered) { EXPECT_EQ(Listed("registered"), ExpectedList("registered")); }
TEST_F(AmdServer, ListsAll) { EXPECT_EQ(Listed("all"), ExpectedList("all")); }
TEST_F(AmdServer, ListsTheSameFromItsCaches) { FirstAndSecondCallsAreAsExpected(); }
TEST_F(AmdServer, LogsAWholeRequest) { LogOfAWholeRequestIsAsExpected(); }

}  // namespace
