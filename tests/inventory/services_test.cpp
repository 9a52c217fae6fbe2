#include "inventory/services.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <algorithm>
#include <cstring>

#include "importhook.h"
#include "logcapture.h"
#include "scratchmachine.h"

using namespace inventory;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::wstring Image(const std::wstring& configured) { return ImagePath(configured, L"svc", L"C:\\Windows"); }

TEST(ImagePath, IsWhatTheKernelMakesOfIt) {
  EXPECT_EQ(Image(L""), L"C:\\Windows\\System32\\drivers\\svc.sys");
  EXPECT_EQ(Image(L"\\SystemRoot\\System32\\drivers\\a.sys"), L"C:\\Windows\\System32\\drivers\\a.sys");
  EXPECT_EQ(Image(L"\\systemroot\\a.sys"), L"C:\\Windows\\a.sys");
  EXPECT_EQ(Image(L"System32\\drivers\\a.sys"), L"C:\\Windows\\System32\\drivers\\a.sys");
  EXPECT_EQ(Image(L"\\??\\C:\\Program Files\\a.sys"), L"C:\\Program Files\\a.sys");
  EXPECT_EQ(Image(L"D:\\a.sys"), L"D:\\a.sys");
  EXPECT_EQ(Image(L"\\Device\\HarddiskVolume1\\a.sys"), L"") << "a path of the kernel alone";
}

TEST(ImagePath, HasItsVariablesExpanded) {
  const test::EnvironmentVariable variable("DRIVERINFO_TEST", "D:\\drivers");
  EXPECT_EQ(Image(L"%DRIVERINFO_TEST%\\a.sys"), L"D:\\drivers\\a.sys");
  EXPECT_EQ(Image(L"%DRIVERINFO_NO_SUCH%"), L"C:\\Windows\\%DRIVERINFO_NO_SUCH%");
  const test::EnvironmentVariable longest("DRIVERINFO_TEST", std::string(5000, 'x'));
  EXPECT_EQ(Image(L"%DRIVERINFO_TEST%"), L"C:\\Windows\\%DRIVERINFO_TEST%") << "no half of what is too long";
}

/// The services of this test, in short.
std::vector<std::string> Described(const std::vector<ServiceFacts>& services) {
  std::vector<std::string> texts;
  for (const ServiceFacts& service : services) {
    if (service.service.compare(0, 2, "Oi") != 0) continue;
    texts.push_back(service.service + "|" + service.configured + "|" + service.path + "|" + service.state + "|" +
                    service.start_type + "|" + (service.image_missing ? "missing" : service.image_time) + "|" +
                    (service.size ? std::to_string(*service.size) : ""));
  }
  std::sort(texts.begin(), texts.end());
  return texts;
}

using ServicesOfAMachine = test::ScratchMachine;

TEST_F(ServicesOfAMachine, AreAllThereWithOrWithoutImage) {
  const test::ScratchFile image(test::DriverPath("OiThere.sys"), 4097);
  const test::DriverService there("OiThere", "\\SystemRoot\\System32\\drivers\\OiThere.sys", SERVICE_BOOT_START);
  const test::DriverService other("OiOther", "system32\\DRIVERS\\oithere.sys", SERVICE_DISABLED,
                                  SERVICE_FILE_SYSTEM_DRIVER);
  const test::DriverService byName("OiGone", "", SERVICE_AUTO_START);
  const test::DriverService elsewhere("OiElsewhere", "\\??\\C:\\elsewhere\\OiThere.sys", SERVICE_SYSTEM_START);
  const test::DriverService kernel("OiKernel", "\\Device\\Volume\\x.sys");
  EXPECT_THAT(
      Described(ReadServices()),
      ElementsAre(
          "OiElsewhere|\\??\\C:\\elsewhere\\OiThere.sys|C:\\elsewhere\\OiThere.sys|Stopped|System Start|missing|",
          "OiGone||C:\\windows\\System32\\drivers\\OiGone.sys|Stopped|Automatic|missing|",
          "OiKernel|\\Device\\Volume\\x.sys|\\Device\\Volume\\x.sys|Stopped|Manual||",
          "OiOther|system32\\DRIVERS\\oithere.sys|C:\\windows\\system32\\DRIVERS\\oithere.sys|Stopped|Disabled|"
          "2006-06-21T13:05:09Z|4097",
          "OiThere|\\SystemRoot\\System32\\drivers\\OiThere.sys|C:\\windows\\System32\\drivers\\OiThere.sys|"
          "Stopped|Boot Start|2006-06-21T13:05:09Z|4097"));
}

/// The image of the service Oi, about which Windows says what `ask` does.
template <typename Ask>
std::vector<std::string> DescribedWhere(Ask ask) {
  const test::DriverService service("Oi", "C:\\oi.sys");
  HOOK(attributes, test::ThisProgram(), GetFileAttributesExW,
       [&](const wchar_t*, GET_FILEEX_INFO_LEVELS, void* data) -> BOOL {
         return ask(*static_cast<WIN32_FILE_ATTRIBUTE_DATA*>(data));
       });
  return Described(ReadServices());
}

TEST_F(ServicesOfAMachine, WithAnImageThatMayNotBeLookedAtDoNotMissIt) {
  for (const auto& [error, text] :
       {std::pair(ERROR_ACCESS_DENIED, ""), std::pair(ERROR_SHARING_VIOLATION, ""),
        std::pair(ERROR_FILE_NOT_FOUND, "missing"), std::pair(ERROR_PATH_NOT_FOUND, "missing")}) {
    const auto fail = [code = static_cast<DWORD>(error)](WIN32_FILE_ATTRIBUTE_DATA&) {
      SetLastError(code);
      return FALSE;
    };
    EXPECT_THAT(DescribedWhere(fail),
                ElementsAre("Oi|C:\\oi.sys|C:\\oi.sys|Stopped|Manual|" + std::string(text) + "|"));
  }
}

TEST_F(ServicesOfAMachine, MayHaveAnImageOfMoreThan4GiB) {
  const auto large = [](WIN32_FILE_ATTRIBUTE_DATA& data) {
    data = {};
    data.nFileSizeHigh = 1;
    data.nFileSizeLow = 5;
    return TRUE;
  };
  EXPECT_THAT(DescribedWhere(large),
              ElementsAre("Oi|C:\\oi.sys|C:\\oi.sys|Stopped|Manual|1601-01-01T00:00:00Z|4294967301"));
}

TEST_F(ServicesOfAMachine, MayHaveAConfigurationOfMoreThan4KiB) {
  const std::string path = "C:\\" + std::string(2500, 'p');
  const test::DriverService service("Oi", path);
  const std::vector<ServiceFacts> services = ReadServices();
  const auto found =
      std::find_if(services.begin(), services.end(), [](const ServiceFacts& facts) { return facts.service == "Oi"; });
  ASSERT_NE(found, services.end());
  EXPECT_EQ(found->configured, path);
}

TEST(Services, AreNotThereWhereTheManagerCannotBeAsked) {
  HOOK(noManager, test::ThisProgram(), OpenSCManagerW, [](const wchar_t*, const wchar_t*, DWORD) -> SC_HANDLE {
    SetLastError(ERROR_ACCESS_DENIED);
    return nullptr;
  });
  test::LogCapture log;
  EXPECT_THAT(ReadServices(), IsEmpty());
  const auto lines = log.Take();
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].level, 2);
  EXPECT_THAT(lines[0].text, testing::StartsWith("The services cannot be listed: "));
}

/// A service control manager that fills its buffers as it likes. No service can be opened.
class Manager {
 public:
  using Fill = std::function<BOOL(BYTE* buffer, DWORD size, DWORD* needed, DWORD* count)>;

  explicit Manager(Fill fill)
      : m_enumerate(test::ThisProgram(), "EnumServicesStatusExW",
                    [fill = std::move(fill)](SC_HANDLE, SC_ENUM_TYPE, DWORD, DWORD, BYTE* buffer, DWORD size,
                                             DWORD* needed, DWORD* count, DWORD*,
                                             const wchar_t*) { return fill(buffer, size, needed, count); }),
        m_open(test::ThisProgram(), "OpenServiceW", [](SC_HANDLE, const wchar_t*, DWORD) -> SC_HANDLE {
          SetLastError(ERROR_ACCESS_DENIED);
          return nullptr;
        }) {}

 private:
  test::ImportHook<&EnumServicesStatusExW> m_enumerate;
  test::ImportHook<&OpenServiceW> m_open;
};

ENUM_SERVICE_STATUS_PROCESSW* Entries(BYTE* buffer) { return reinterpret_cast<ENUM_SERVICE_STATUS_PROCESSW*>(buffer); }

TEST(Services, StayInsideTheBufferWhateverTheManagerSays) {
  const Manager manager([](BYTE* buffer, DWORD size, DWORD* needed, DWORD* count) -> BOOL {
    // A name that fills the buffer to its end without a terminator, and more entries than there is room for.
    std::memset(buffer, 0, size);
    wchar_t* const name = reinterpret_cast<wchar_t*>(buffer + size) - 3;
    std::copy_n(L"abc", 3, name);
    Entries(buffer)[0].lpServiceName = name;
    Entries(buffer)[0].ServiceStatusProcess.dwCurrentState = 77;
    *count = 0xFFFFFFFF;
    *needed = 0;
    return TRUE;
  });
  test::LogCapture log;
  const std::vector<ServiceFacts> services = ReadServices();
  ASSERT_EQ(services.size(), 1u);
  EXPECT_EQ(services[0].service, "abc");
  EXPECT_EQ(services[0].state, "") << "no state has this number";
  EXPECT_EQ(services[0].start_type, "");
  const auto lines = log.Take();
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_THAT(lines[0].text, testing::StartsWith("The configuration of the service abc cannot be read: "));
}

TEST(Services, EndWhereTheManagerAlwaysWantsMore) {
  int calls = 0;
  const Manager manager([&calls](BYTE*, DWORD size, DWORD* needed, DWORD* count) -> BOOL {
    ++calls;
    *count = 0;
    *needed = size * 2;
    SetLastError(ERROR_MORE_DATA);
    return FALSE;
  });
  EXPECT_THAT(ReadServices(), IsEmpty());
  EXPECT_LT(calls, 100);
}

TEST(Services, ComeInSeveralAnswers) {
  int calls = 0;
  const Manager manager([&calls](BYTE* buffer, DWORD size, DWORD* needed, DWORD* count) -> BOOL {
    std::memset(buffer, 0, size);
    auto* const name = reinterpret_cast<wchar_t*>(buffer + 1024);
    std::copy_n(calls == 0 ? L"one" : L"two", 4, name);
    Entries(buffer)[0].lpServiceName = name;
    *count = 1;
    *needed = calls == 0 ? 100 : 0;
    SetLastError(ERROR_MORE_DATA);
    return ++calls == 2;
  });
  test::LogCapture log;
  const std::vector<ServiceFacts> services = ReadServices();
  ASSERT_EQ(services.size(), 2u);
  EXPECT_EQ(services[0].service, "one");
  EXPECT_EQ(services[1].service, "two");
}

}  // namespace
