/// @file
/// Files that a test leaves to no one: in the temporary folder, under names that no other process uses.
#pragma once

#include <string>
#include <vector>

namespace test {

/// The path of `file` in the temporary folder. The process's number and start time are part of the name, since Windows
/// gives numbers again and a test that crashed may have left its files.
std::string TemporaryPath(const std::string& file);

/// The content of a file; fails the test when it cannot be read.
std::string FileContent(const std::wstring& path);

/// Writes `text` over whatever the file held; fails the test when it cannot be written.
void WriteText(const std::wstring& path, const std::string& text);

/// A new folder while it lives, with everything in it.
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
