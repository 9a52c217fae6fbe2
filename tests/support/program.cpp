#include "program.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "scratchmachine.h"

namespace test {
namespace {

HANDLE CreateInherited(const std::wstring& path) {
  SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};
  return CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr);
}

}  // namespace

ProgramResult RunProgram(const std::string& program, const std::wstring& arguments, HANDLE output) {
  const TemporaryFolder folder;
  const HANDLE outputFile = CreateInherited(folder.Path(L"output"));
  const HANDLE errorFile = CreateInherited(folder.Path(L"errors"));
  const std::wstring path = ProgramDirectory() + L"\\" + std::wstring(program.begin(), program.end());
  std::wstring commandLine = L"\"" + path + L"\" " + arguments;
  STARTUPINFOW start{};
  start.cb = sizeof(start);
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = output != nullptr ? output : outputFile;
  start.hStdError = errorFile;
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &process)) {
    throw std::runtime_error("cannot start " + program + ": error " + std::to_string(GetLastError()));
  }
  WaitForSingleObject(process.hProcess, INFINITE);
  ProgramResult result{};
  GetExitCodeProcess(process.hProcess, &result.exitCode);
  for (const HANDLE handle : {process.hProcess, process.hThread, outputFile, errorFile}) CloseHandle(handle);
  result.output = FileContent(folder.Path(L"output"));
  result.errors = FileContent(folder.Path(L"errors"));
  return result;
}

std::string FileContent(const std::wstring& path) {
  const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                  nullptr, OPEN_EXISTING, 0, nullptr);
  EXPECT_NE(file, INVALID_HANDLE_VALUE) << "a file cannot be opened";
  std::string content(file != INVALID_HANDLE_VALUE ? GetFileSize(file, nullptr) : 0, '\0');
  DWORD read = 0;
  ReadFile(file, content.data(), static_cast<DWORD>(content.size()), &read, nullptr);
  CloseHandle(file);
  content.resize(read);
  return content;
}

TemporaryFolder::TemporaryFolder() {
  static int count = 0;
  wchar_t folder[MAX_PATH];
  GetTempPathW(MAX_PATH, folder);
  m_path = folder + (L"driverinfo_test_" + std::to_wstring(GetCurrentProcessId()) + L"_" + std::to_wstring(++count));
  CreateDirectoryW(m_path.c_str(), nullptr);
}

TemporaryFolder::~TemporaryFolder() {
  for (const std::wstring& file : Files()) {
    SetFileAttributesW(Path(file).c_str(), FILE_ATTRIBUTE_NORMAL);
    DeleteFileW(Path(file).c_str());
  }
  RemoveDirectoryW(m_path.c_str());
}

std::vector<std::wstring> TemporaryFolder::Files() const {
  std::vector<std::wstring> files;
  WIN32_FIND_DATAW data;
  const HANDLE found = FindFirstFileW((m_path + L"\\*").c_str(), &data);
  if (found == INVALID_HANDLE_VALUE) return files;
  do {
    if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) files.emplace_back(data.cFileName);
  } while (FindNextFileW(found, &data));
  FindClose(found);
  return files;
}

}  // namespace test
