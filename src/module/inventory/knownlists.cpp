#include "inventory/knownlists.h"

#include <windows.h>

#include <utility>

#include "inventory/input.h"
#include "platform/encoding.h"
#include "trust/knownlists.h"

namespace inventory {
namespace {

/// Path of the list next to the program; empty if there is no such file.
std::string ShippedList() {
  std::wstring path(1 << 15, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  path = path.substr(0, path.find_last_of(L'\\') + 1) + L"known-drivers.json";
  return GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES ? std::string() : Orvane::Utf8FromWide(path);
}

void Add(const std::string& path, trust::KnownDrivers& known) {
  try {
    InputFile file(path);
    trust::KnownContent content = trust::ReadKnownList(file);
    known.Add(std::move(content.lists), std::move(content.entries));
  } catch (const InputProblem& problem) {
    throw UnusableList(path + " " + problem.what() + ".");
  }
}

}  // namespace

trust::KnownDrivers ReadKnownLists(const std::vector<std::string>& paths) {
  trust::KnownDrivers known;
  const std::string shipped = paths.empty() ? ShippedList() : std::string();
  if (!shipped.empty()) Add(shipped, known);
  for (const std::string& path : paths) Add(path, known);
  return known;
}

}  // namespace inventory
