#include "context.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>

#include "unicode.h"

namespace {

long long SecondsOf(const SYSTEMTIME& time) {
  FILETIME fileTime{};
  SystemTimeToFileTime(&time, &fileTime);
  return static_cast<long long>(
      (static_cast<unsigned long long>(fileTime.dwHighDateTime) << 32 | fileTime.dwLowDateTime) / 10'000'000);
}

// The suite runs in a zone that is not UTC.
TEST(ContextInHelsinki, TellsTheTimeInUtc) {
  SYSTEMTIME now;
  GetSystemTime(&now);
  const std::string text = driverlist::UtcNow();
  SYSTEMTIME told{};
  int end = 0;
  ASSERT_EQ(std::sscanf(text.c_str(), "%4hu-%2hu-%2huT%2hu:%2hu:%2huZ%n", &told.wYear, &told.wMonth, &told.wDay,
                        &told.wHour, &told.wMinute, &told.wSecond, &end),
            6);
  EXPECT_EQ(end, 20) << text;
  EXPECT_NEAR(static_cast<double>(SecondsOf(told)), static_cast<double>(SecondsOf(now)), 60);
  SYSTEMTIME local;
  GetLocalTime(&local);
  if (SecondsOf(local) == SecondsOf(now)) GTEST_SKIP() << "the machine's zone is UTC, which shows nothing";
}

TEST(Context, TellsTheVersionOfThisWindows) {
  RTL_OSVERSIONINFOW version{};
  version.dwOSVersionInfoSize = sizeof(version);
  const auto getVersion = reinterpret_cast<LONG(WINAPI*)(RTL_OSVERSIONINFOW*)>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll.dll"), "RtlGetVersion")));
  ASSERT_EQ(getVersion(&version), 0);
  char expected[64];
  std::snprintf(expected, sizeof(expected), "%lu.%lu.%lu", version.dwMajorVersion, version.dwMinorVersion,
                version.dwBuildNumber);
  EXPECT_EQ(driverlist::WindowsVersion(), expected);
  EXPECT_EQ(driverlist::ToolVersion(), PROJECT_VERSION);
}

TEST(Context, TellsTheNameOfThisMachine) {
  wchar_t name[256];
  DWORD size = 256;
  ASSERT_TRUE(GetComputerNameExW(ComputerNamePhysicalDnsHostname, name, &size));
  EXPECT_EQ(driverlist::HostName(), driverlist::Utf8FromWide(name));
  EXPECT_NE(driverlist::HostName(), "");
}

}  // namespace
