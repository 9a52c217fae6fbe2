/// @file
/// A machine with a service, two devices and a package of the test, and what hosts find on it.
#pragma once

#include <driverinventory.h>

#include <gmock/gmock.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "program.h"
#include "scratchmachine.h"

namespace test {

using Json = nlohmann::ordered_json;

/// A text of the library, freed.
inline std::string Taken(char* text, std::size_t length) {
  std::string copy(text == nullptr ? "" : text, length);
  EXPECT_EQ(driverinventory_free(text), DRIVERINVENTORY_OK);
  return copy;
}

inline std::string Document(const driverinventory* inventory, int32_t document) {
  char* text = nullptr;
  std::size_t length = 0;
  EXPECT_EQ(driverinventory_document(inventory, document, &text, &length), DRIVERINVENTORY_OK)
      << driverinventory_error();
  return Taken(text, length);
}

/// `text` without the times of documents.
inline std::string WithoutTimes(std::string text) {
  for (const std::string start : {"\"time\": \"", "\"time\":\""}) {
    for (std::size_t at = 0; (at = text.find(start, at)) != std::string::npos;) {
      at += start.size();
      text.erase(at, text.find('"', at) - at);
    }
  }
  return text;
}

/// What driverlist.exe prints.
inline std::string PrintedByDriverlist(const std::wstring& arguments) {
  const ProgramResult result = RunProgram("driverlist.exe", arguments);
  EXPECT_EQ(result.errors, "");
  return result.output;
}

/// A handle that is released.
struct Released {
  void operator()(driverinventory* inventory) const {
    EXPECT_EQ(driverinventory_release(inventory), DRIVERINVENTORY_OK);
  }
};
using Handle = std::unique_ptr<driverinventory, Released>;

inline Handle Collected(const driverinventory_options* options = nullptr) {
  driverinventory* inventory = nullptr;
  EXPECT_EQ(driverinventory_collect(options, &inventory), DRIVERINVENTORY_OK) << driverinventory_error();
  return Handle(inventory);
}

inline Handle Read(const std::string& snapshot) {
  driverinventory* inventory = nullptr;
  EXPECT_EQ(driverinventory_read(snapshot.data(), snapshot.size(), &inventory), DRIVERINVENTORY_OK)
      << driverinventory_error();
  return Handle(inventory);
}

/// Its names are in two scripts, so no code page but UTF-8 has them all.
class HostedMachine : public ScratchMachine {
 protected:
  void SetUp() override {
    ScratchMachine::SetUp();
    if (!IsSkipped()) m_machine = std::make_unique<Machine>();
  }

 private:
  static DeviceSettings Card(const std::string& instanceId) {
    DeviceSettings settings;
    settings.instanceId = instanceId;
    settings.description = "\u0421\u0435\u0442\u044C \u97F3";
    settings.service = "IfNet";
    settings.package = InstalledPackage{"oem9101.inf", "1.2.3.4", "1-2-2023"};
    return settings;
  }

  struct Machine {
    ScratchFile image{SystemDirectory() + "\\drivers\\IfNet\u97F3.sys", L"images\\full.sys"};
    DriverService service{"IfNet", "System32\\drivers\\IfNet\u97F3.sys"};
    ScratchFile package{
        InfDirectory() + "\\oem9101.inf",
        std::vector<std::string>{"[Version]", "Signature=\"$WINDOWS NT$\"", "Provider=Some maker",
                                 "DriverVer=01/02/2023,1.2.3.4", "[SourceDisksFiles]", "IfNet.sys=1", "IfNet.dll=1"}};
    Device first{Card("PCI\\VEN_1234&DEV_5678\\IF1")};
    Device second{Card("PCI\\VEN_1234&DEV_5678\\IF2")};
  };
  std::unique_ptr<Machine> m_machine;
};

/// A snapshot of a service, a device and a package.
inline const std::string SmallSnapshot = R"({
  "kind": "driverlist snapshot",
  "schema_version": 2,
  "tool_version": "0.1.0",
  "host": "h\u00f6st",
  "host_id": "4f1e",
  "windows": "10.0.22621",
  "time": "2024-05-06T07:08:09Z",
  "drivers": [
    {"kind": "service", "name": "one.sys", "version": "1.0", "service": "one", "image_missing": true, "size": 4096},
    {"kind": "device", "name": "two", "instance_id": "PCI\\TWO", "names": ["two", "zw\u00f6lf"], "problem_code": 28},
    {"kind": "package", "name": "three.sys", "inf": "oem3.inf", "files": ["three.sys"], "devices_using": 0}
  ]
}
)";

}  // namespace test
