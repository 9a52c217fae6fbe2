// Machines that nobody would make on purpose: services, packages and devices of few names, which meet in every way.
// What the library lists of each must be in its inventory, and every real thing must be one record.
// DRIVERINFO_RANDOM_MACHINES says how many there are (5 when it is not set), DRIVERINFO_RANDOM_SEED the seed of the
// first (1).
#include <gmock/gmock.h>
#include <windows.h>
// After windows.h.
#include <setupapi.h>

#include <cstdlib>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>

#include "platform/encoding.h"
#include "platform/handles.h"
#include "program.h"
#include "random.h"
#include "scratchmachine.h"

using Json = nlohmann::json;
using test::Random;
using test::ScratchFile;

namespace {

using Names = std::multiset<std::string>;

unsigned NumberOf(const char* variable, unsigned otherwise) {
  const char* const text = std::getenv(variable);
  return text != nullptr ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : otherwise;
}

constexpr const char* Stems[] = {"oia", "OiB", "oic.x", "oid"};

/// Services, packages and devices for as long as it lives.
class Machine {
 public:
  explicit Machine(unsigned seed) : m_random(seed) {
    for (const char* const stem : Stems) AddImages(stem);
    for (const char* const name : {"oia", "oib", "oic", "oid", "oie", "OiF", "oig", "oic.x"}) AddService(name);
    for (int number = 9000; number < 9004; ++number) AddPackage("oem" + std::to_string(number) + ".inf");
    for (const char* const inf : {"oinet.inf", "oidisk.inf"}) AddPackage(inf);
    for (int number = 0; number < 8; ++number) AddDevice(number);
    if (m_random.OneIn(2)) AddChipset("SOFTWARE\\Intel\\InfInst", "Version");
    if (m_random.OneIn(2)) AddChipset("SOFTWARE\\WOW6432Node\\AMD\\AMD_Chipset_Drivers", "ProductVersion");
  }

 private:
  void AddImages(const std::string& stem) {
    const std::string drivers = test::SystemDirectory() + "\\drivers\\";
    for (const std::string& folder : {drivers, std::string("C:\\oi\\")}) {
      if (m_random.OneIn(2))
        m_files.push_back(std::make_unique<ScratchFile>(folder + stem + ".sys", L"images\\full.sys"));
    }
  }

  std::string ImagePath() {
    static constexpr const char* folders[] = {"System32\\drivers\\",
                                              "\\SystemRoot\\System32\\drivers\\",
                                              "%SystemRoot%\\System32\\drivers\\",
                                              "\\??\\C:\\oi\\",
                                              "C:\\oi\\",
                                              ""};
    static constexpr const char* endings[] = {".sys", ".SYS", ".sys.sys", ""};
    if (m_random.OneIn(6)) return std::string();
    return std::string(m_random.Pick(folders)) + m_random.Pick(Stems) +
           (m_random.OneIn(3) ? m_random.Pick(endings) : ".sys");
  }

  void AddService(const std::string& name) {
    if (m_random.OneIn(3)) {
      // The key of something that is not a driver service, which the library looks at all the same.
      if (m_random.OneIn(2)) {
        m_values.push_back(std::make_unique<test::RegistryValue>(test::ServiceKey(name), "ImagePath", REG_EXPAND_SZ,
                                                                 ImagePath() + '\0'));
      }
      return;
    }
    static constexpr DWORD starts[] = {SERVICE_BOOT_START, SERVICE_AUTO_START, SERVICE_DEMAND_START};
    m_services.push_back(std::make_unique<test::DriverService>(name, ImagePath(), starts[m_random.Below(3)]));
  }

  void AddPackage(const std::string& inf) {
    static constexpr const char* sections[] = {"[SourceDisksFiles]", "[SourceDisksFiles.amd64]",
                                               "[SourceDisksFiles.x86]", "[SourceDisksFiles.ia64]",
                                               "[SourceDisksFiles.arm64]"};
    static constexpr const char* files[] = {"oia.sys", "OIA.SYS", "OiB.sys",  "oinet.inf",
                                            "oi.dll",  ".sys",    "oic.x.sys"};
    std::vector<std::string> lines = {"[Version]", "Signature=\"$WINDOWS NT$\""};
    if (!m_random.OneIn(6)) lines.emplace_back("DriverVer=01/02/2023,1.2.3.4");
    if (!m_random.OneIn(6)) lines.emplace_back("Provider=Some maker");
    for (std::size_t count = m_random.Below(3); count > 0; --count) {
      lines.emplace_back(m_random.Pick(sections));
      for (std::size_t file = m_random.Below(4); file > 0; --file)
        lines.push_back(std::string(m_random.Pick(files)) + "=1");
    }
    m_files.push_back(std::make_unique<ScratchFile>(test::InfDirectory() + "\\" + inf, lines));
  }

  void AddDevice(int number) {
    static constexpr const char* ids[] = {"PCI\\VEN_8086&DEV_15F3&SUBSYS_0A5C1028",
                                          "PCI\\VEN_1234&DEV_0001",
                                          "ACPI\\INTC105E",
                                          "ACPI\\INTC1051",
                                          "ACPI\\AMDI0030",
                                          "ACPI\\DRTM0002",
                                          "ACPI\\FIXEDBUTTON",
                                          "USB\\VID_1234&PID_0001"};
    static constexpr const char* infs[] = {"oem9000.inf", "OEM9001.INF", "oem9002.inf", "oinet.inf", "oigone.inf"};
    test::DeviceSettings settings;
    const std::string id = m_random.Pick(ids);
    settings.instanceId = id + "\\OI" + std::to_string(number);
    settings.className = "Net";
    if (!m_random.OneIn(3)) settings.hardwareIds = {id};
    if (!m_random.OneIn(3)) settings.package = test::InstalledPackage{m_random.Pick(infs), "1.0", "1-2-2023"};
    m_devices.push_back(std::make_unique<test::Device>(settings));
  }

  void AddChipset(const std::string& key, const std::string& value) {
    m_values.push_back(std::make_unique<test::RegistryValue>(key, value, REG_SZ, std::string("1.0") + '\0'));
  }

  Random m_random;
  std::vector<std::unique_ptr<ScratchFile>> m_files;
  std::vector<std::unique_ptr<test::DriverService>> m_services;
  std::vector<std::unique_ptr<test::Device>> m_devices;
  std::vector<std::unique_ptr<test::RegistryValue>> m_values;
};

// --- What Windows itself counts.

Names DriverServices() {
  const Orvane::ServiceHandle manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ENUMERATE_SERVICE));
  std::vector<char> buffer(1 << 18);
  DWORD needed = 0;
  DWORD count = 0;
  EXPECT_TRUE(EnumServicesStatusW(manager.get(), SERVICE_DRIVER, SERVICE_STATE_ALL,
                                  reinterpret_cast<ENUM_SERVICE_STATUSW*>(buffer.data()),
                                  static_cast<DWORD>(buffer.size()), &needed, &count, nullptr));
  Names names;
  for (DWORD i = 0; i < count; ++i) {
    names.insert(Orvane::Utf8FromWide(reinterpret_cast<const ENUM_SERVICE_STATUSW*>(buffer.data())[i].lpServiceName));
  }
  return names;
}

Names PresentDevices() {
  Names ids;
  for (const wchar_t* const enumerator : {L"PCI", L"ACPI"}) {
    const Orvane::DeviceSet set(SetupDiGetClassDevsW(nullptr, enumerator, nullptr, DIGCF_PRESENT | DIGCF_ALLCLASSES));
    SP_DEVINFO_DATA device{};
    device.cbSize = sizeof(device);
    wchar_t id[512];
    for (DWORD i = 0; SetupDiEnumDeviceInfo(set.get(), i, &device); ++i) {
      EXPECT_TRUE(SetupDiGetDeviceInstanceIdW(set.get(), &device, id, 512, nullptr));
      ids.insert(Orvane::Utf8FromWide(id));
    }
  }
  return ids;
}

Names OemInfs() {
  Names infs;
  WIN32_FIND_DATAA file;
  const Orvane::FindHandle found(FindFirstFileA((test::InfDirectory() + "\\oem*.inf").c_str(), &file));
  if (!found) return infs;
  do {
    infs.insert(Orvane::LowerCase(file.cFileName));
  } while (FindNextFileA(found.get(), &file));
  return infs;
}

// --- What the program prints.

Json Printed(const std::wstring& arguments) {
  const test::ProgramResult result = test::RunProgram("driverlist.exe", L"list --format json " + arguments);
  EXPECT_EQ(result.exitCode, 0u) << result.errors;
  return Json::parse(result.output).at("drivers");
}

/// Of the records of one kind, the texts of `member`.
Names Of(const Json& records, const std::string& kind, const char* member) {
  Names texts;
  for (const Json& record : records) {
    if (record.at("kind") == kind && record.contains(member)) texts.insert(record.at(member).get<std::string>());
  }
  return texts;
}

/// In lower case: all of them are, or are made of, names of files.
std::set<std::string> AllNames(const Json& records) {
  std::set<std::string> names;
  for (const Json& record : records) {
    names.insert(Orvane::LowerCase(record.at("name").get<std::string>()));
    for (const char* const member : {"names", "files"}) {
      for (const Json& name : record.value(member, Json::array())) {
        names.insert(Orvane::LowerCase(name.get<std::string>()));
      }
    }
  }
  return names;
}

void HoldsWhatTheLibraryLists(const Json& records) {
  const std::set<std::string> names = AllNames(records);
  for (const wchar_t* const mode : {L"--mode all", L"--mode registered", L"--mode by-device"}) {
    for (const Json& driver : Printed(mode)) {
      const std::string name = driver.at("name");
      EXPECT_EQ(names.count(Orvane::LowerCase(name)), 1u) << name << " of " << Orvane::Utf8FromWide(mode);
    }
  }
}

void HasOneRecordForEachRealThing(const Json& records) {
  EXPECT_EQ(Of(records, "service", "service"), DriverServices());
  EXPECT_EQ(Of(records, "device", "instance_id"), PresentDevices());
  Names infs;
  for (const std::string& inf : Of(records, "package", "inf")) infs.insert(Orvane::LowerCase(inf));
  Names expected = OemInfs();
  for (const std::string& inf : Of(records, "device", "inf")) {
    const bool isThere = GetFileAttributesA((test::InfDirectory() + "\\" + inf).c_str()) != INVALID_FILE_ATTRIBUTES;
    if (isThere && expected.count(Orvane::LowerCase(inf)) == 0) expected.insert(Orvane::LowerCase(inf));
  }
  EXPECT_EQ(infs, expected);
}

using RandomMachines = test::ScratchMachine;

TEST_F(RandomMachines, AreInTheirInventoryAsTheLibraryListsThemAndAsTheyAre) {
  const unsigned first = NumberOf("DRIVERINFO_RANDOM_SEED", 1);
  for (unsigned seed = first; seed < first + NumberOf("DRIVERINFO_RANDOM_MACHINES", 5); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const Machine machine(seed);
    const Json records = Printed(L"");
    EXPECT_GT(records.size(), 8u);
    HoldsWhatTheLibraryLists(records);
    HasOneRecordForEachRealThing(records);
  }
}

}  // namespace
