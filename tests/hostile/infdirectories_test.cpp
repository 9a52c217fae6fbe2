// Inf directories with names of every kind, through the scan for OEM packages.
#include <gmock/gmock.h>
#include <windows.h>
// After windows.h.
#include <setupapi.h>

#include <algorithm>

#include "hostile.h"
#include "importhook.h"
#include "packagefiles.h"
#include "platform/handles.h"
#include "records.h"
#include "scratchmachine.h"

using namespace Orvane;
using test::HostileBatch;
using test::Random;
using test::ThisProgram;

namespace {

/// What GetSystemWindowsDirectoryA fills.
constexpr std::size_t DirectorySize = 256;

std::wstring AnyName(Random& random) {
  static const std::wstring pieces[] = {
      L"oem",    L"OEM",   L"oEm",   L"oem1", L"0",    L"42",    L" ",      L".",      L"..",
      L".inf",   L".INF",  L".InF",  L".pnf", L"%",    L"x",     L"oe",     L"inf",    L"[]",
      L";",      L"=",     L"'",     L"\xE9", L"\xFC", L"\x437", L"\x65E5", L"\x20AC", L"\xD83D\xDE00",
      L"\xD83D", L"\x131", L"\xFF0E"};
  std::wstring name = random.OneIn(2) ? L"oem" : std::wstring();
  for (std::size_t count = random.Below(6); count > 0; --count) name += random.Pick(pieces);
  if (random.OneIn(8)) name += std::wstring(random.Below(240), L'x');
  if (random.OneIn(2)) name += L".inf";
  return name;
}

/// In the ANSI code page, with "?" for what that does not have.
std::string Narrow(const std::wstring& name) {
  char narrow[1024];
  const DWORD flags = GetACP() == CP_UTF8 ? 0 : WC_NO_BEST_FIT_CHARS;
  const int size = WideCharToMultiByte(CP_ACP, flags, name.c_str(), static_cast<int>(name.size()), narrow,
                                       sizeof(narrow), nullptr, nullptr);
  return std::string(narrow, static_cast<std::size_t>(size));
}

bool IsOemPackage(std::string name) {
  for (char& c : name) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
  return name.size() >= 4 && name.rfind("oem", 0) == 0 && name.substr(name.size() - 4) == ".inf";
}

class HostileInfDirectories : public test::ScratchMachine {
 protected:
  void SetUp() override {
    ScratchMachine::SetUp();
    if (IsSkipped()) return;
    CreateDirectoryW(windows.c_str(), nullptr);
    CreateDirectoryW((windows + L"\\inf").c_str(), nullptr);
  }
  void TearDown() override {
    Clear();
    RemoveDirectoryW((windows + L"\\inf").c_str());
    RemoveDirectoryW(windows.c_str());
  }

  void Make(const std::wstring& name, bool isFolder) {
    const std::wstring path = windows + L"\\inf\\" + name;
    if (isFolder) {
      CreateDirectoryW(path.c_str(), nullptr);
    } else {
      // Names that the system does not take are part of the game.
      const Orvane::FileHandle made(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
    }
  }

  /// What is in the directory, as the system lists it: it takes not every name, and not as it stands.
  std::vector<std::wstring> Names() const {
    std::vector<std::wstring> names;
    WIN32_FIND_DATAW file;
    const Orvane::FindHandle found(FindFirstFileW((windows + L"\\inf\\*").c_str(), &file));
    if (!found) return names;
    do {
      const std::wstring name = file.cFileName;
      if (name != L"." && name != L"..") names.push_back(name);
    } while (FindNextFileW(found.get(), &file));
    return names;
  }

  void Clear() {
    for (const std::wstring& name : Names()) {
      const std::wstring path = windows + L"\\inf\\" + name;
      if (!DeleteFileW(path.c_str())) RemoveDirectoryW(path.c_str());
    }
  }

  std::wstring windows = L"C:\\hostile";
};

TEST_F(HostileInfDirectories, GiveThePackagesThatAreNamedSo) {
  std::string answer;
  HOOK(directory, ThisProgram(), GetSystemWindowsDirectoryA, [&](char* buffer, UINT size) -> UINT {
    EXPECT_EQ(size, DirectorySize);
    std::copy_n(answer.begin(), std::min<std::size_t>(size, answer.size()), buffer);
    return static_cast<UINT>(answer.size());
  });
  std::vector<std::string> read;
  HOOK(open, ThisProgram(), SetupOpenInfFileA, [&](const char* path, const char*, DWORD, UINT*) -> HINF {
    read.emplace_back(path);
    return INVALID_HANDLE_VALUE;
  });
  std::size_t packages = 0;
  HostileBatch batch("inf directories");
  batch.ForEach([&](Random& random) {
    Clear();
    for (std::size_t count = random.Below(6); count > 0; --count) Make(AnyName(random), random.OneIn(10));
    const bool isOurs = !random.OneIn(8);
    // Another answer holds a character that no path has, so that it is that of no directory.
    answer = isOurs ? "C:\\hostile" : "C:\\" + random.Text(random.Below(400)) + "*";
    if (random.OneIn(20)) answer.clear();
    read.clear();
    std::vector<DriverData> drivers(1);
    PackageFiles::ScanOemInfCatalogue(drivers);
    EXPECT_EQ(test::Described(drivers), test::Described(std::vector<DriverData>(1)));

    std::vector<std::string> expected;
    for (const std::wstring& name : Names()) {
      if (IsOemPackage(Narrow(name))) expected.push_back("C:\\hostile\\inf\\" + Narrow(name));
    }
    if (answer != "C:\\hostile") expected.clear();
    EXPECT_THAT(read, testing::UnorderedElementsAreArray(expected));
    packages += read.size();
  });
  EXPECT_GT(packages, batch.Size() / 4);
}

}  // namespace
