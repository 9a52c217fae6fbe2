/// @file
/// A program of the project, run as a user would.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace test {

struct ProgramResult {
  DWORD exitCode;
  std::string output;
  std::string errors;
};

/// Runs `program`, which stands beside the test program, with `arguments` as they would be typed behind its name. Its
/// standard output goes to `output` when that is given, which stays open.
ProgramResult RunProgram(const std::string& program, const std::wstring& arguments, HANDLE output = nullptr);

/// The content of a file; fails the test when it cannot be read.
std::string FileContent(const std::wstring& path);

/// A folder while it lives, with everything in it.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::wstring Path(const std::wstring& file) const { return m_path + L"\\" + file; }
  /// Names of the files in it, in the order of the file system.
  std::vector<std::wstring> Files() const;

 private:
  std::wstring m_path;
};

}  // namespace test
