#include "inventory/head.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <cstdio>

#include "importhook.h"
#include "inventory/json.h"
#include "platform/encoding.h"

using inventory::Head;
using inventory::ThisMachine;

namespace {

long long SecondsOf(const SYSTEMTIME& time) {
  FILETIME fileTime{};
  SystemTimeToFileTime(&time, &fileTime);
  return static_cast<long long>(
      (static_cast<unsigned long long>(fileTime.dwHighDateTime) << 32 | fileTime.dwLowDateTime) / 10'000'000);
}

// The suite runs in a zone that is not UTC.
TEST(HeadInHelsinki, HasTheTimeInUtc) {
  SYSTEMTIME now;
  GetSystemTime(&now);
  const std::string text = ThisMachine("").time;
  SYSTEMTIME read{};
  int end = 0;
  ASSERT_EQ(std::sscanf(text.c_str(), "%4hu-%2hu-%2huT%2hu:%2hu:%2huZ%n", &read.wYear, &read.wMonth, &read.wDay,
                        &read.wHour, &read.wMinute, &read.wSecond, &end),
            6);
  EXPECT_EQ(end, 20) << text;
  EXPECT_NEAR(static_cast<double>(SecondsOf(read)), static_cast<double>(SecondsOf(now)), 60);
  SYSTEMTIME local;
  GetLocalTime(&local);
  if (SecondsOf(local) == SecondsOf(now)) GTEST_SKIP() << "the machine's zone is UTC, which shows nothing";
}

TEST(Head, HasTheVersionOfThisWindowsAndOfTheProgram) {
  RTL_OSVERSIONINFOW version{};
  version.dwOSVersionInfoSize = sizeof(version);
  const auto getVersion = reinterpret_cast<LONG(WINAPI*)(RTL_OSVERSIONINFOW*)>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll.dll"), "RtlGetVersion")));
  ASSERT_EQ(getVersion(&version), 0);
  char expected[64];
  std::snprintf(expected, sizeof(expected), "%lu.%lu.%lu", version.dwMajorVersion, version.dwMinorVersion,
                version.dwBuildNumber);
  EXPECT_EQ(ThisMachine("").windows, expected);
  EXPECT_EQ(ThisMachine("").tool_version, PROJECT_VERSION);
}

TEST(Head, HasTheNameOfThisMachine) {
  wchar_t name[256];
  DWORD size = 256;
  ASSERT_TRUE(GetComputerNameExW(ComputerNamePhysicalDnsHostname, name, &size));
  EXPECT_EQ(ThisMachine("").host, Orvane::Utf8FromWide(name));
  EXPECT_NE(ThisMachine("").host, "");
}

TEST(Head, HasTheGuidOfTheMachineUnlessTheUserSaysOtherwise) {
  HOOK(guid, test::ThisProgram(), RegGetValueW,
       [](HKEY root, const wchar_t* key, const wchar_t* name, DWORD, DWORD*, void* data, DWORD* size) -> LSTATUS {
         EXPECT_EQ(root, HKEY_LOCAL_MACHINE);
         EXPECT_STREQ(key, L"SOFTWARE\\Microsoft\\Cryptography");
         EXPECT_STREQ(name, L"MachineGuid");
         const std::wstring text = L"7e6c1b0a-5a5e-4f0f-9d57-0c6a54b2f1e3";
         std::copy(text.begin(), text.end(), static_cast<wchar_t*>(data));
         *size = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
         return ERROR_SUCCESS;
       });
  EXPECT_EQ(ThisMachine("").host_id, "7e6c1b0a-5a5e-4f0f-9d57-0c6a54b2f1e3");
  EXPECT_EQ(ThisMachine("\u0436 1").host_id, "\u0436 1");
}

TEST(Head, HasNoIdentifierWhereTheMachineHasNoGuid) {
  HOOK(guid, test::ThisProgram(), RegGetValueW,
       [](HKEY, const wchar_t*, const wchar_t*, DWORD, DWORD*, void*, DWORD*) -> LSTATUS {
         return ERROR_FILE_NOT_FOUND;
       });
  EXPECT_EQ(ThisMachine("").host_id, "");
}

TEST(Head, BeginsADocumentWithWhatIsKnown) {
  EXPECT_EQ(
      inventory::JsonText(inventory::HeadJson({"1.2", "PC \u0436", "id", "10.0.1", "2024-05-06T07:08:09Z"}), false),
      "{\"schema_version\":2,\"tool_version\":\"1.2\",\"host\":\"PC \u0436\",\"host_id\":\"id\","
      "\"windows\":\"10.0.1\",\"time\":\"2024-05-06T07:08:09Z\"}");
  EXPECT_EQ(inventory::JsonText(inventory::HeadJson({"1.2", "", "", "", "t"}), false),
            "{\"schema_version\":2,\"tool_version\":\"1.2\",\"time\":\"t\"}");
}

}  // namespace
