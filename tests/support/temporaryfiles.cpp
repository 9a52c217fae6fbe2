#include "temporaryfiles.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <stdexcept>

#include "platform/handles.h"

namespace test {
namespace {

/// Different for every process that ever ran on this machine.
std::string ProcessName() {
  FILETIME start{};
  FILETIME unused{};
  GetProcessTimes(GetCurrentProcess(), &start, &unused, &unused, &unused);
  return std::to_string(GetCurrentProcessId()) + "_" + std::to_string(start.dwHighDateTime) + "_" +
         std::to_string(start.dwLowDateTime);
}

}  // namespace

std::string TemporaryPath(const std::string& file) {
  char folder[MAX_PATH];
  return std::string(folder, GetTempPathA(MAX_PATH, folder)) + "driverinfo_test_" + ProcessName() + "_" + file;
}

std::string FileContent(const std::wstring& path) {
  const Orvane::FileHandle file(CreateFileW(path.c_str(), GENERIC_READ,
                                            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                            OPEN_EXISTING, 0, nullptr));
  EXPECT_TRUE(file) << "a file cannot be opened";
  if (!file) return std::string();
  std::string content(GetFileSize(file.get(), nullptr), '\0');
  DWORD read = 0;
  EXPECT_TRUE(ReadFile(file.get(), content.data(), static_cast<DWORD>(content.size()), &read, nullptr));
  content.resize(read);
  return content;
}

void WriteText(const std::wstring& path, const std::string& text) {
  const Orvane::FileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  ASSERT_TRUE(file) << "a file cannot be written";
  DWORD written = 0;
  EXPECT_TRUE(WriteFile(file.get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr));
}

namespace {

/// The files of a program that has just ended are closed a moment later, when the machine is busy.
bool Delete(const std::wstring& path) {
  for (int tries = 0; !DeleteFileW(path.c_str()); ++tries) {
    if (GetLastError() != ERROR_SHARING_VIOLATION || tries == 100) return false;
    Sleep(20);
  }
  return true;
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
  static int count = 0;
  const std::string name = "driverinfo_test_" + ProcessName() + "_" + std::to_string(++count);
  wchar_t folder[MAX_PATH];
  m_path = std::wstring(folder, GetTempPathW(MAX_PATH, folder)) + std::wstring(name.begin(), name.end());
  if (!CreateDirectoryW(m_path.c_str(), nullptr)) throw std::runtime_error("cannot make the folder " + name);
}

TemporaryFolder::~TemporaryFolder() {
  // A test that cannot tidy up says so: what stays behind would be found by the next one.
  for (const std::wstring& file : Files()) {
    SetFileAttributesW(Path(file).c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_TRUE(Delete(Path(file))) << "error " << GetLastError();
  }
  EXPECT_TRUE(RemoveDirectoryW(m_path.c_str())) << "error " << GetLastError();
}

std::vector<std::wstring> TemporaryFolder::Files() const {
  std::vector<std::wstring> files;
  WIN32_FIND_DATAW data;
  const Orvane::FindHandle found(FindFirstFileW((m_path + L"\\*").c_str(), &data));
  if (!found) return files;
  do {
    if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) files.emplace_back(data.cFileName);
  } while (FindNextFileW(found.get(), &data));
  return files;
}

}  // namespace test
