// Registry values of every type and size: where an image is, and the versions of chipset packages.
#include <gmock/gmock.h>
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <optional>

#include "devicediscovery.h"
#include "hostile.h"
#include "importhook.h"
#include "platform/handles.h"
#include "records.h"
#include "scratchmachine.h"
#include "scriptedservices.h"
#include "servicedrivers.h"

using namespace Orvane;
using test::Described;
using test::HostileBatch;
using test::Random;
using test::ScratchFile;
using test::ThisProgram;

namespace {

/// What the library's buffers for values hold.
constexpr std::size_t BufferSize = 1024;

/// One value of the registry that changes from input to input.
class ChangingValue {
 public:
  ChangingValue(const std::string& key, const char* name) : m_key(key), m_name(name) {
    HKEY opened = nullptr;
    RegOpenKeyExA(HKEY_LOCAL_MACHINE, key.c_str(), 0, KEY_SET_VALUE | KEY_WOW64_64KEY, &opened);
    m_opened.reset(opened);
  }

  void Set(DWORD type, const std::string& bytes) {
    const LSTATUS status = RegSetValueExA(m_opened.get(), m_name, 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                                          static_cast<DWORD>(bytes.size()));
    if (status != ERROR_SUCCESS) throw std::runtime_error("the value cannot be set, error " + std::to_string(status));
  }

 private:
  test::RegistryKey m_key;
  const char* m_name;
  RegKey m_opened;
};

/// The library closes no registry key; with as many as these, somebody has to.
class ClosedKeys {
 public:
  void CloseLast() { m_last.reset(); }

 private:
  RegKey m_last;
  test::ImportHook<&RegOpenKeyExA> m_open{ThisProgram(), "RegOpenKeyExA",
                                          [this](HKEY root, const char* path, DWORD options, REGSAM access, HKEY* key) {
                                            const LSTATUS status = m_open.Real(root, path, options, access, key);
                                            m_last.reset(status == ERROR_SUCCESS ? *key : nullptr);
                                            return status;
                                          }};
};

DWORD AnyType(Random& random) { return static_cast<DWORD>(random.OneIn(10) ? random.Next() : random.Below(12)); }

bool IsText(DWORD type) { return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ; }

/// Sizes around that of the buffer, and 0 to 70,000 bytes.
std::size_t AnySize(Random& random) {
  return random.OneIn(4)   ? BufferSize - 4 + random.Below(8)
         : random.OneIn(3) ? random.Below(70'001)
                           : random.Below(200);
}

std::string AnyValue(Random& random) {
  static const std::string paths[] = {"\\SystemRoot\\System32\\drivers\\",
                                      "\\??\\C:\\",
                                      "%SystemRoot%\\",
                                      "system32\\",
                                      "%%%",
                                      "C:\\",
                                      "%PATH%%PATH%",
                                      "\\\\server\\share\\",
                                      "\\Device\\"};
  std::string value = random.OneIn(3) ? random.Pick(paths) : std::string();
  value += random.Text(AnySize(random));
  if (random.OneIn(3)) value.resize(AnySize(random), '\0');
  for (std::size_t zeros = random.Below(3); zeros > 0 && !value.empty(); --zeros)
    value[random.Below(value.size())] = '\0';
  if (random.OneIn(5)) std::fill(value.begin(), value.end(), '%');
  return value;
}

/// What the library reads of a value, where that does not depend on the code page: texts are kept in UTF-16.
std::optional<std::string> ReadText(DWORD type, const std::string& value) {
  const bool isAscii =
      std::all_of(value.begin(), value.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  // The platform adds a terminator to a text that has none.
  const bool hasNone = IsText(type) && !value.empty() && value.back() != '\0';
  if (value.size() + hasNone > BufferSize) return std::nullopt;
  if (IsText(type) && !isAscii) return std::nullopt;
  return value.substr(0, value.find('\0'));
}

class HostileRegistryValues : public test::ScratchMachine {};

TEST_F(HostileRegistryValues, AreVersionsOfChipsetPackages) {
  using Detect = bool (*)(std::vector<DriverData>&);
  struct Package {
    Detect detect;
    std::string name;
    std::string rest;
    ChangingValue value;
  };
  Package packages[] = {{&DetectIntelChipset,
                         "intel_chipset",
                         "Intel chipset Driver; provider=Intel; ",
                         {"SOFTWARE\\Intel\\InfInst", "Version"}},
                        {&DetectAmdChipset,
                         "amd_chipset",
                         "Amd chipset Driver; provider=Amd; ",
                         {"SOFTWARE\\WOW6432Node\\AMD\\AMD_Chipset_Drivers", "ProductVersion"}},
                        {&DetectAmdPshedPlugin,
                         "amd_ppd",
                         "Amd EPYC SP3 PSHED Plug-in Driver; provider=Amd; ",
                         {"SOFTWARE\\WOW6432Node\\AMD\\AMD EPYC SP3 PSHED Plug-in Driver", "ProductVersion"}}};
  ClosedKeys keys;
  std::size_t read = 0;
  HostileBatch batch("chipset versions");
  batch.ForEach([&](Random& random) {
    Package& package = packages[random.Below(std::size(packages))];
    const DWORD type = AnyType(random);
    const std::string value = AnyValue(random);
    package.value.Set(type, value);
    std::vector<DriverData> drivers(1);
    const bool detected = package.detect(drivers);
    keys.CloseLast();
    ASSERT_EQ(drivers.size(), detected ? 2u : 1u);
    EXPECT_EQ(Described(drivers[0]), Described(DriverData()));
    const auto expected = ReadText(type, value);
    EXPECT_TRUE(!expected || detected);
    EXPECT_TRUE(!detected || value.size() <= BufferSize);
    if (!detected) return;
    ++read;
    EXPECT_LE(drivers[1].file_version.size(), BufferSize);
    if (!expected) return;
    const std::string version = expected->empty() ? "" : "file_version=" + *expected + "; ";
    EXPECT_EQ(Described(drivers[1]),
              "name=" + package.name + "; description=" + package.rest + version + "found_by_device=0");
  });
  EXPECT_GT(read, batch.Size() / 2);
}

/// The first place where the library looks for an image of this registered path; none where rules beyond this test
/// decide.
std::optional<std::string> FirstPlace(const std::optional<std::string>& registered) {
  if (!registered || registered->find('%') != std::string::npos) return std::nullopt;
  if (registered->find(':') != std::string::npos) return registered;
  for (const char* const prefix : {"\\system32", "system32", "\\System32", "System32", "\\SystemRoot\\"}) {
    if (registered->rfind(prefix, 0) == 0) return std::nullopt;
  }
  return test::SystemDirectory() + "\\drivers\\" + *registered;
}

TEST_F(HostileRegistryValues, AreImagePathsOfServices) {
  const ScratchFile image(test::SystemDirectory() + "\\drivers\\oihostile.sys", 1);
  ChangingValue value("System\\CurrentControlSet\\Services\\OiHostile", "ImagePath");
  ClosedKeys keys;
  HostileBatch batch("image paths");
  std::vector<DriverData> drivers;
  std::optional<std::string> registered;
  std::vector<std::string> places;
  HOOK(find, ThisProgram(), FindFirstFileA, [&](const char* path, WIN32_FIND_DATAA* data) {
    places.emplace_back(path);
    return find.Real(path, data);
  });
  std::size_t done = 0;
  const auto finish = [&] {
    keys.CloseLast();
    ++done;
    // The image stands where a service without a path has it, so each service gives a record.
    ASSERT_EQ(drivers.size(), done);
    const DriverData& driver = drivers.back();
    ASSERT_FALSE(places.empty());
    for (const std::string& place : places) EXPECT_LE(place.size(), MAX_PATH + BufferSize + 20);
    EXPECT_EQ(places.front(), FirstPlace(registered).value_or(places.front()));
    EXPECT_EQ(driver.path, places.back());
    EXPECT_EQ(driver.name.find('\\'), std::string::npos);
    EXPECT_EQ(driver.state, "Stopped");
    EXPECT_EQ(driver.start_type, "Manual");
  };
  test::ScriptedServices services(
      ThisProgram(), std::vector<std::string>(batch.Size(), "OiHostile"), {},
      [&](std::size_t index) {
        if (index > 0) finish();
        Random random = batch.Begin(index);
        const DWORD type = AnyType(random);
        const std::string bytes = AnyValue(random);
        value.Set(type, bytes);
        registered = ReadText(type, bytes);
        places.clear();
      },
      [](QUERY_SERVICE_CONFIGA* config, DWORD size) {
        std::memset(config, 0, size);
        char* const path = reinterpret_cast<char*>(config + 1);
        std::strcpy(path, "\\SystemRoot\\System32\\drivers\\OiHostile.sys");
        config->lpBinaryPathName = path;
        config->dwStartType = SERVICE_DEMAND_START;
        return TRUE;
      });
  EXPECT_EQ(ServiceDrivers::ListRegisteredDrivers(drivers), 0);
  finish();
  EXPECT_EQ(services.OpenHandles(), 0);
  EXPECT_EQ(done, batch.Size());
}

TEST_F(HostileRegistryValues, MayFillTheWholeBufferAndTellAnySize) {
  const test::RegistryKey key("SOFTWARE\\Intel\\InfInst");
  ClosedKeys keys;
  std::string answer;
  DWORD told = 0;
  LSTATUS status = ERROR_SUCCESS;
  HOOK(query, ThisProgram(), RegQueryValueExA,
       [&](HKEY, const char*, DWORD*, DWORD* type, BYTE* buffer, DWORD* size) -> LSTATUS {
         EXPECT_EQ(*size, BufferSize);
         std::memcpy(buffer, answer.data(), answer.size());
         *size = told;
         *type = told;
         return status;
       });
  HostileBatch batch("answers of the registry");
  batch.ForEach([&](Random& random) {
    answer = random.Text(random.OneIn(2) ? BufferSize : random.Below(BufferSize + 1));
    told = static_cast<DWORD>(random.OneIn(2) ? random.Next() : random.Below(70'001));
    status = random.OneIn(8) ? static_cast<LSTATUS>(random.Next()) : ERROR_SUCCESS;
    std::vector<DriverData> drivers;
    EXPECT_EQ(DetectIntelChipset(drivers), status == ERROR_SUCCESS);
    keys.CloseLast();
    if (status != ERROR_SUCCESS) answer.clear();
    ASSERT_EQ(drivers.size(), status == ERROR_SUCCESS ? 1u : 0u);
    drivers.resize(1);
    EXPECT_EQ(drivers[0].file_version, answer);
  });
}

}  // namespace
