// The examples, on a machine with drivers of the test: what they print is what this program finds itself.
#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "driverinfo.h"
#include "logcapture.h"
#include "program.h"
#include "scratchmachine.h"

using testing::Contains;
using testing::ElementsAre;
using testing::StartsWith;

namespace {

/// What a program of the examples prints, without ends of lines.
std::vector<std::string> PrintedBy(const std::string& program) {
  const test::ProgramResult result = test::RunProgram(program, L"");
  EXPECT_EQ(result.exitCode, 0u);
  EXPECT_EQ(result.errors, "");
  std::istringstream output(result.output);
  std::vector<std::string> lines;
  for (std::string line; std::getline(output, line);) lines.push_back(line.substr(0, line.find('\r')));
  return lines;
}

/// A machine with one driver at least.
class Examples : public test::ScratchMachine {
 protected:
  void SetUp() override {
    ScratchMachine::SetUp();
    if (!IsSkipped()) m_machine = std::make_unique<Machine>();
  }

 private:
  struct Machine {
    test::ScratchFile image{test::DriverPath("OiExample.sys"), L"images\\full.sys"};
    test::DriverService service{"OiExample", "System32\\drivers\\OiExample.sys"};
  };
  std::unique_ptr<Machine> m_machine;
};

TEST_F(Examples, ListTheDriversOfTheMachine) {
  Orvane::DriverInfo info;
  std::vector<Orvane::DriverData> drivers;
  info.list_drivers(drivers, Orvane::All);
  std::vector<std::string> expected;
  for (const Orvane::DriverData& driver : drivers) {
    expected.push_back(driver.name + " " + driver.file_version + " (" + driver.state + "): " + driver.path);
  }

  const std::vector<std::string> printed = PrintedBy("example_list.exe");
  EXPECT_EQ(printed, expected);
  EXPECT_THAT(printed, Contains("OiExample.sys 6.2.9200.16384 (Stopped): " + test::DriverPath("OiExample.sys")));
}

TEST_F(Examples, TakeTheLogIntoTheirOwnHands) {
  test::LogCapture log;
  Orvane::DriverInfo info;
  std::vector<Orvane::DriverData> drivers;
  info.list_drivers(drivers, Orvane::Registered);
  std::vector<std::string> expected;
  int others = 0;
  for (const test::LogLine& line : log.Take()) {
    if (line.level > 2) {
      ++others;
    } else {
      expected.push_back((line.level == 1 ? "error: " : "warning: ") + line.text);
    }
  }
  expected.push_back(std::to_string(drivers.size()) + " drivers, " + std::to_string(others) + " other lines");

  const std::vector<std::string> printed = PrintedBy("example_logsink.exe");
  EXPECT_EQ(printed, expected);
  EXPECT_THAT(printed, Contains(StartsWith("error: Failed to open SOFTWARE\\")));
}

TEST_F(Examples, ListTheDevicesOfAnInventoryOfTheirOwn) {
  std::vector<std::string> printed = PrintedBy("inventory\\example_list.exe");
  EXPECT_THAT(printed, Contains(StartsWith("OiExample.sys ")));
  printed.erase(std::remove_if(printed.begin(), printed.end(),
                               [](const std::string& line) { return line.find("_nodriver#") == std::string::npos; }),
                printed.end());
  EXPECT_THAT(printed, ElementsAre("1EA0-0042-0000-0000_nodriver# N/A (): "));
}

}  // namespace
