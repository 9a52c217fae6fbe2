#include <array>

#include "platform/handles.h"
#include "platform/platformtext.h"
#include "servicedrivers.h"
#include "wow64redirection.h"

namespace Orvane {
namespace {

FindHandle FindCandidate(const std::string& candidate, WIN32_FIND_DATAA* findData) {
  FindHandle found(FindFirstFileA(candidate.c_str(), findData));
  if (found) return found;
  const RedirectionOff redirectionOff;
  if (redirectionOff) found.reset(FindFirstFileA(candidate.c_str(), findData));
  return found;
}

}  // namespace

HANDLE FindDriverFile(std::string& path, WIN32_FIND_DATAA* findData) {
  std::array<char, MAX_PATH> systemDirectory{};
  std::array<char, MAX_PATH> windowsDirectory{};
  // If Windows does not report the directory, it is empty, and no file is found below it.
  GetSystemDirectoryA(systemDirectory.data(), MAX_PATH);
  GetWindowsDirectoryA(windowsDirectory.data(), MAX_PATH);
  const std::string system = BoundedText(systemDirectory.data(), systemDirectory.size());

  std::string candidate = FirstImagePlace(path, system);
  FindHandle found = FindCandidate(candidate, findData);
  if (!found) {
    candidate = system + "\\" + path;
    found = FindCandidate(candidate, findData);
  }
  if (!found) {
    // If Windows does not report its own directory, the system directory is still searched.
    GetWindowsDirectoryA(systemDirectory.data(), MAX_PATH);
    candidate = BoundedText(systemDirectory.data(), systemDirectory.size()) + "\\" + path;
    found = FindCandidate(candidate, findData);
  }
  if (!found) return INVALID_HANDLE_VALUE;
  path = candidate;
  return found.release();
}

}  // namespace Orvane
