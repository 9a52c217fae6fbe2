// The inventory of a real machine: who is asked, and how often.
#include <gmock/gmock.h>
#include <windows.h>
// After windows.h.
#include <setupapi.h>

#include <algorithm>
#include <map>

#include "codepage.h"
#include "importhook.h"
#include "inventory/inventory.h"
#include "platform/encoding.h"
#include "scratchmachine.h"

using namespace inventory;

namespace {

using Counts = std::map<std::string, int>;

std::vector<std::string> Package(const std::string& file) {
  return {"[Version]",           "Signature=\"$WINDOWS NT$\"",
          "Provider=Some maker", "DriverVer=01/02/2023,1.2.3.4",
          "[SourceDisksFiles]",  file + "=1"};
}

const Record* Find(const Records& records, Kind kind, const std::string& key) {
  const auto found = std::find_if(records.begin(), records.end(),
                                  [&](const Record& record) { return record.kind == kind && KeyOf(record) == key; });
  return found == records.end() ? nullptr : &*found;
}

class InventoryOfAMachine : public test::ScratchMachine {
 protected:
  void SetUp() override {
    ScratchMachine::SetUp();
    if (!IsSkipped()) m_machine = std::make_unique<Machine>();
  }

 private:
  static test::DeviceSettings Card(const std::string& instanceId) {
    test::DeviceSettings settings;
    settings.instanceId = instanceId;
    settings.service = "OiNet";
    settings.package = test::InstalledPackage{"oem9001.inf", "1.2.3.4", "1-2-2023"};
    return settings;
  }

  struct Machine {
    test::ScratchFile image{test::DriverPath("OiNet.sys"), L"images\\full.sys"};
    test::DriverService service{"OiNet", "System32\\drivers\\OiNet.sys"};
    test::ScratchFile elsewhere{"C:\\oi\\OiOther.sys", L"images\\full.sys"};
    test::DriverService other{"OiUnlike", "\\??\\C:\\oi\\OiOther.sys"};
    test::ScratchFile package{test::InfDirectory() + "\\oem9001.inf", Package("OiNet.sys")};
    test::Device first{Card("PCI\\VEN_1234&DEV_5678\\OI1")};
    test::Device second{Card("PCI\\VEN_1234&DEV_5678\\OI2")};
  };
  std::unique_ptr<Machine> m_machine;
};

TEST_F(InventoryOfAMachine, OpensEachServiceAndEachInfOnceBeyondTheLibrary) {
  Counts services;
  Counts infs;
  HOOK(openService, test::ThisProgram(), OpenServiceW, [&](SC_HANDLE manager, const wchar_t* name, DWORD access) {
    ++services[Orvane::Utf8FromWide(name)];
    return openService.Real(manager, name, access);
  });
  HOOK(openInf, test::ThisProgram(), SetupOpenInfFileW,
       [&](const wchar_t* path, const wchar_t* infClass, DWORD style, UINT* line) {
         ++infs[Orvane::Utf8FromWide(path)];
         return openInf.Real(path, infClass, style, line);
       });
  const Records records = Collect({}).records;
  EXPECT_EQ(services["OiNet"], 1);
  EXPECT_EQ(services["OiUnlike"], 1);
  EXPECT_EQ(infs[test::InfDirectory() + "\\oem9001.inf"], 1);
  for (const Counts& counts : {services, infs}) {
    for (const auto& [name, count] : counts) EXPECT_EQ(count, 1) << name;
  }
}

TEST_F(InventoryOfAMachine, ReadsTheImageOfAServiceThatTheLibraryDoesNotFind) {
  const Records records = Collect({}).records;
  const Record* const found = Find(records, Kind::Service, "oinet");
  const Record* const unlike = Find(records, Kind::Service, "oiunlike");
  ASSERT_NE(found, nullptr);
  ASSERT_NE(unlike, nullptr);
  EXPECT_EQ(unlike->name, "OiOther.sys");
  EXPECT_EQ(unlike->path, "C:\\oi\\OiOther.sys");
  EXPECT_NE(found->version, "");
  EXPECT_EQ(unlike->version, found->version);
  EXPECT_EQ(unlike->product_version, found->product_version);
  EXPECT_EQ(unlike->provider, found->provider);
  EXPECT_EQ(unlike->description, found->description);
}

TEST_F(InventoryOfAMachine, IsInUtf8WhateverTheCodePageOfTheLibrary) {
  const test::ScratchFile image(test::DriverPath("OiGeraet.sys"), L"images\\codepage.sys");
  const test::DriverService service("OiGeraet", "System32\\drivers\\OiGeraet.sys");
  const test::ScratchFile unlistedImage("C:\\oi\\OiFern.sys", L"images\\codepage.sys");
  const test::DriverService unlisted("OiAnders", "\\??\\C:\\oi\\OiFern.sys");
  // What the library gives in the code page of this machine, it is now said to give in another.
  const std::string company = Orvane::AnsiFromUtf8("M\u00FCller Ger\u00E4te");
  const std::string description = Orvane::AnsiFromUtf8("Treiber f\u00FCr Ger\u00E4te");
  const test::WesternCodePage western;
  const Records records = Collect({}).records;
  for (const char* const key : {"oigeraet", "oianders"}) {
    const Record* const found = Find(records, Kind::Service, key);
    ASSERT_NE(found, nullptr) << key;
    EXPECT_EQ(found->provider, Orvane::Utf8FromAnsi(company)) << key;
    EXPECT_EQ(found->description, Orvane::Utf8FromAnsi(description)) << key;
  }
}

TEST_F(InventoryOfAMachine, CountsTheDevicesOfAPackage) {
  const Records records = Collect({}).records;
  const Record* const package = Find(records, Kind::Package, "oem9001.inf");
  ASSERT_NE(package, nullptr);
  EXPECT_EQ(package->devices_using, 2u);
  for (const char* const key : {"pci\\ven_1234&dev_5678\\oi1", "pci\\ven_1234&dev_5678\\oi2"}) {
    const Record* const device = Find(records, Kind::Device, key);
    ASSERT_NE(device, nullptr) << key;
    EXPECT_EQ(device->inf, "oem9001.inf");
    EXPECT_EQ(device->service, "OiNet");
    EXPECT_EQ(device->name, "OiNet_1234-5678-0000-0000");
  }
}

TEST_F(InventoryOfAMachine, IsTheSameWhenItIsCollectedAgain) {
  const Records first = Collect({}).records;
  const Records second = Collect({}).records;
  ASSERT_EQ(first.size(), second.size());
  for (std::size_t i = 0; i < first.size(); ++i) {
    EXPECT_EQ(KeyOf(first[i]), KeyOf(second[i]));
    EXPECT_EQ(first[i].name, second[i].name);
    EXPECT_EQ(first[i].version, second[i].version);
    EXPECT_EQ(first[i].names, second[i].names);
  }
}

}  // namespace
