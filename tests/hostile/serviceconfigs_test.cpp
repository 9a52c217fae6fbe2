// Services whose names and configurations are empty, very long or anything else, and a service control manager that
// fills its buffers as it likes.
#include <gmock/gmock.h>
#include <windows.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <new>

#include "guardedmemory.h"
#include "hostile.h"
#include "importhook.h"
#include "machine.h"
#include "records.h"
#include "scratchmachine.h"
#include "scriptedservices.h"
#include "servicedrivers.h"

using namespace Orvane;
using test::Described;
using test::GuardedMemory;
using test::HostileBatch;
using test::Random;
using test::ThisProgram;

namespace {

std::string AnyName(Random& random) { return random.Text(random.OneIn(100) ? random.Below(60'000) : random.Size(300)); }

/// Half of them look like paths.
std::string AnyPath(Random& random, std::size_t largest) {
  static const std::string beginnings[] = {
      "\\SystemRoot\\System32\\drivers\\", "\\??\\", "x\\??\\", "\\??", "System32\\", "C:\\", "\\"};
  static const std::string endings[] = {".sys", ".SYS", ".", "..", ".sys.sys", "\\", "\\.sys", ""};
  std::string path = random.Text(random.OneIn(4) ? random.Below(largest + 1) : random.Below(100));
  if (random.OneIn(2)) path = random.Pick(beginnings) + path + random.Pick(endings);
  path.resize(std::min(path.size(), largest));
  return path;
}

/// File name that names the registry key of a service, as far as its last ".".
std::string Stem(const std::string& path, const std::string& service) {
  std::string image = service + ".sys";
  if (path.find("\\??\\") != std::string::npos) {
    image = path.substr(4);
  } else if (!path.empty()) {
    image = path.substr(path.rfind('\\') + 1);
    for (char& c : image) {
      if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
  }
  return image.substr(0, image.rfind('.'));
}

std::string RecordName(const std::string& path) {
  const std::string file = path.substr(path.rfind('\\') + 1);
  const std::size_t dot = file.find('.');
  return dot == std::string::npos ? file : file.substr(0, dot) + ".sys";
}

std::string NameOf(std::size_t index, const std::vector<std::string>& names) {
  return index < names.size() ? names[index] : std::string();
}

/// What the input of a batch is made of.
struct Service {
  std::string name;
  DWORD state = 0;
  DWORD startType = 0;
  bool isConfigured = true;
  /// What the configuration says, as the library can read it.
  std::string path;
  bool isFound = true;
  WIN32_FIND_DATAA file{};
};

class HostileServices : public testing::Test {
 protected:
  /// Draws the part of an input that is there before its service is opened.
  static Service Begin(Random& random) {
    Service service;
    service.name = AnyName(random);
    service.state = static_cast<DWORD>(random.OneIn(3) ? random.Next() : random.Below(9));
    return service;
  }

  /// Fills the library's buffer with a configuration and draws the rest of the input.
  BOOL Configure(QUERY_SERVICE_CONFIGA* config, DWORD size) {
    Random& random = *current;
    char* const begin = reinterpret_cast<char*>(config);
    service.startType = static_cast<DWORD>(random.OneIn(3) ? random.Next() : random.Below(6));
    service.isConfigured = !random.OneIn(10);
    service.isFound = !random.OneIn(3);
    service.file.nFileSizeLow = static_cast<DWORD>(random.Next());
    service.file.nFileSizeHigh = static_cast<DWORD>(random.OneIn(2) ? 0 : random.Next());
    service.file.ftCreationTime = {static_cast<DWORD>(random.Next()), static_cast<DWORD>(random.Next())};
    std::memset(begin, static_cast<int>(1 + random.Below(255)), size);
    config->dwStartType = service.startType;
    const std::size_t head = sizeof(*config);
    switch (random.Below(5)) {
      case 0:
        config->lpBinaryPathName = nullptr;
        service.path.clear();
        break;
      case 1:
        service.path = AnyPath(random, 20'000);
        config->lpBinaryPathName = elsewhere.Put(service.path + '\0');
        break;
      case 2: {
        // To the last byte of the buffer, without a terminator.
        service.path = AnyPath(random, size - head);
        config->lpBinaryPathName = begin + size - service.path.size();
        std::memcpy(config->lpBinaryPathName, service.path.data(), service.path.size());
        break;
      }
      default: {
        service.path = AnyPath(random, size - head - 1);
        config->lpBinaryPathName = begin + head;
        std::memcpy(config->lpBinaryPathName, service.path.c_str(), service.path.size() + 1);
      }
    }
    SetLastError(static_cast<DWORD>(random.Below(2000)));
    return service.isConfigured ? TRUE : FALSE;
  }

  /// The record that the service must have given.
  std::string Expected() const {
    static const std::vector<std::string> states = {"Reserved", "Stopped",          "Start Pending", "Stop Pending",
                                                    "Running",  "Continue Pending", "Pause Pending", "Paused"};
    static const std::vector<std::string> startTypes = {"Boot Start", "System Start", "Automatic", "Manual",
                                                        "Disabled"};
    DriverData driver;
    driver.path = test::SystemDirectory() + "\\drivers\\";
    driver.name = RecordName(driver.path);
    driver.state = NameOf(service.state, states);
    driver.start_type = NameOf(service.startType, startTypes);
    driver.size =
        std::to_string((std::uint64_t{service.file.nFileSizeHigh} * 0x1'0000'0000 + service.file.nFileSizeLow) / 1024);
    return Described(driver);
  }

  Random* current = nullptr;
  Service service;
  GuardedMemory elsewhere{1 << 16};
};

TEST_F(HostileServices, MayHaveAnyNameAndConfiguration) {
  HostileBatch batch("service configurations");
  std::vector<std::string> names;
  std::vector<DWORD> states;
  for (std::size_t i = 0; i < batch.Size(); ++i) {
    Random random = batch.Input(i);
    const Service begun = Begin(random);
    names.push_back(begun.name);
    states.push_back(begun.state);
  }
  std::vector<DriverData> drivers;
  std::vector<std::string> keys;
  std::size_t expected = 0;
  HOOK(open, ThisProgram(), RegOpenKeyExA, [&](HKEY, const char* path, DWORD, REGSAM, HKEY*) -> LSTATUS {
    keys.emplace_back(path);
    return ERROR_FILE_NOT_FOUND;
  });
  HOOK(find, ThisProgram(), FindFirstFileA, [&](const char*, WIN32_FIND_DATAA* data) -> HANDLE {
    if (!service.isFound) return INVALID_HANDLE_VALUE;
    *data = service.file;
    return elsewhere.Put("found");
  });
  HOOK(close, ThisProgram(), FindClose, [](HANDLE) { return TRUE; });
  HOOK(version, ThisProgram(), GetFileVersionInfoSizeA, [](const char*, DWORD*) { return DWORD{0}; });
  const auto finish = [&] {
    const std::string key = "System\\CurrentControlSet\\Services\\" + Stem(service.path, service.name);
    EXPECT_EQ(keys, service.isConfigured ? std::vector<std::string>{key} : std::vector<std::string>());
    if (service.isConfigured && service.isFound) ++expected;
    ASSERT_EQ(drivers.size(), expected);
    if (!service.isConfigured || !service.isFound) return;
    DriverData& driver = drivers.back();
    EXPECT_THAT(driver.date, testing::AnyOf("", testing::SizeIs(11), testing::SizeIs(19)));
    driver.date.clear();
    EXPECT_EQ(Described(driver), Expected());
  };
  std::optional<Random> random;
  {
    test::ScriptedServices services(
        ThisProgram(), names, states,
        [&](std::size_t index) {
          if (index > 0) finish();
          random = batch.Begin(index);
          current = &*random;
          service = Begin(*random);
          keys.clear();
        },
        [&](QUERY_SERVICE_CONFIGA* config, DWORD size) { return Configure(config, size); });
    // The chipset packages come last, and have no keys here.
    EXPECT_EQ(ServiceDrivers::ListRegisteredDrivers(drivers), 0);
    EXPECT_EQ(services.OpenHandles(), 0);
  }
  ASSERT_GE(keys.size(), 3u);
  keys.resize(keys.size() - 3);
  finish();
}

using New = void* (*)(std::size_t);
using Delete = void (*)(void*, std::size_t);
constexpr New NewFunction = &operator new;
constexpr Delete DeleteFunction = &operator delete;

TEST_F(HostileServices, AreEnumeratedWithinTheBuffer) {
#if defined(_MSC_VER)
  GTEST_SKIP() << "operator new is no import here, so the library's buffer cannot be put before a guard page";
#endif
  GuardedMemory buffer(1 << 17);
  DWORD needed = 0;
  std::size_t buffers = 0;
  const test::ImportHook<NewFunction> allocate(ThisProgram(), "_Znwy", [&](std::size_t size) -> void* {
    if (size != needed) return allocate.Real(size);
    ++buffers;
    return buffer.Zeros(size);
  });
  const test::ImportHook<DeleteFunction> release(ThisProgram(), "_ZdlPvy", [&](void* memory, std::size_t size) {
    if (!buffer.Holds(memory)) release.Real(memory, size);
  });
  std::vector<std::string> opened;
  HOOK(manager, ThisProgram(), OpenSCManagerA,
       [&](const char*, const char*, DWORD) { return reinterpret_cast<SC_HANDLE>(&opened); });
  HOOK(closeService, ThisProgram(), CloseServiceHandle, [](SC_HANDLE) { return TRUE; });
  HOOK(registry, ThisProgram(), RegOpenKeyExA,
       [](HKEY, const char*, DWORD, REGSAM, HKEY*) -> LSTATUS { return ERROR_FILE_NOT_FOUND; });
  // None can be opened: what the library made of the buffer is what it asks for.
  HOOK(open, ThisProgram(), OpenServiceA, [&](SC_HANDLE, const char* name, DWORD) -> SC_HANDLE {
    opened.emplace_back(name);
    SetLastError(ERROR_ACCESS_DENIED);
    return nullptr;
  });
  DWORD size = 0;
  DWORD told = 0;
  HOOK(enumerate, ThisProgram(), EnumServicesStatusA,
       [&](SC_HANDLE, DWORD, DWORD, ENUM_SERVICE_STATUSA* entries, DWORD, DWORD* bytes, DWORD* count, DWORD*) -> BOOL {
         Random& random = *current;
         *bytes = needed = size;
         if (entries == nullptr) {
           SetLastError(ERROR_MORE_DATA);
           return FALSE;
         }
         char* const begin = reinterpret_cast<char*>(entries);
         std::memset(begin, 'x', size);
         const std::size_t whole = size / sizeof(*entries);
         for (std::size_t i = 0; i < whole; ++i) {
           entries[i] = {};
           // In the buffer, mostly at its end, where nothing terminates it; or elsewhere, or nowhere.
           entries[i].lpServiceName =
               begin + (random.OneIn(2) ? size - random.Below(std::min<DWORD>(size, 40) + 1) : random.Below(size + 1));
           entries[i].lpDisplayName = random.OneIn(2) ? nullptr : begin + random.Below(size + 1);
           if (random.OneIn(20)) entries[i].lpServiceName = nullptr;
         }
         *count = told;
         SetLastError(random.OneIn(2) ? ERROR_MORE_DATA : ERROR_ACCESS_DENIED);
         return random.OneIn(4) ? FALSE : TRUE;
       });
  std::size_t entries = 0;
  HostileBatch batch("enumerations of services");
  batch.ForEach([&](Random& random) {
    current = &random;
    opened.clear();
    // Of a size that nothing else has.
    size = static_cast<DWORD>(10'007 + 8 * random.Below(10'000));
    told = static_cast<DWORD>(random.OneIn(3) ? random.Next() : random.Below(300));
    std::vector<DriverData> drivers;
    EXPECT_EQ(ServiceDrivers::ListRegisteredDrivers(drivers), 0);
    needed = 0;
    EXPECT_EQ(drivers.size(), 0u);
    EXPECT_LE(opened.size(), std::min<std::size_t>(told, size / sizeof(ENUM_SERVICE_STATUSA)));
    for (const std::string& name : opened) EXPECT_LE(name.size(), size);
    entries += opened.size();
  });
  EXPECT_EQ(buffers, batch.Size());
  EXPECT_GT(entries, batch.Size() / 2);
}

}  // namespace
