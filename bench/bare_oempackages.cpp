#include <windows.h>

#include <vector>

#include "bare.h"
#include "platform/handles.h"

namespace bench::bare {
namespace {

using Orvane::FileHandle;

bool IsOemPackage(const std::string& file) {
  return file.size() >= 7 && _strnicmp(file.c_str(), "oem", 3) == 0 &&
         _stricmp(file.c_str() + file.size() - 4, ".inf") == 0;
}

std::string Narrow(const wchar_t* text, std::size_t bytes) {
  char narrow[MAX_PATH];
  const int length =
      WideCharToMultiByte(CP_ACP, 0, text, static_cast<int>(bytes / sizeof(*text)), narrow, MAX_PATH, nullptr, nullptr);
  return std::string(narrow, static_cast<std::size_t>(length));
}

/// Reads the packages among one buffer of directory entries.
void ReadEntries(const std::string& folder, const char* buffer, Records& records) {
  for (const char* next = buffer;;) {
    const auto* const entry = reinterpret_cast<const FILE_FULL_DIR_INFO*>(next);
    const std::string file = Narrow(entry->FileName, entry->FileNameLength);
    if (IsOemPackage(file)) ReadPackage(folder + "\\" + file, records);
    if (entry->NextEntryOffset == 0) return;
    next += entry->NextEntryOffset;
  }
}

}  // namespace

Records ListOemPackages() {
  char windows[256];
  GetSystemWindowsDirectoryA(windows, sizeof(windows));
  const std::string folder = std::string(windows) + "\\inf";
  Records records;
  const FileHandle handle(CreateFileW(std::wstring(folder.begin(), folder.end()).c_str(), FILE_LIST_DIRECTORY,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  // As Boost.Filesystem walks a folder: is it a link; entries in the newest form, which Wine does not have; entries in
  // the full form.
  FILE_ATTRIBUTE_TAG_INFO tag;
  GetFileInformationByHandleEx(handle.get(), FileAttributeTagInfo, &tag, sizeof(tag));
  constexpr auto newestForm = static_cast<FILE_INFO_BY_HANDLE_CLASS>(20);
  std::vector<char> buffer(0x10000);
  const auto size = static_cast<DWORD>(buffer.size());
  GetFileInformationByHandleEx(handle.get(), newestForm, buffer.data(), size);
  for (BOOL more = GetFileInformationByHandleEx(handle.get(), FileFullDirectoryRestartInfo, buffer.data(), size); more;
       more = GetFileInformationByHandleEx(handle.get(), FileFullDirectoryInfo, buffer.data(), size)) {
    ReadEntries(folder, buffer.data(), records);
  }
  return records;
}

}  // namespace bench::bare
