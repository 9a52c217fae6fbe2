#include "inventory/systemfolders.h"

#include <algorithm>
#include <array>
#include <map>

#include "inventory/predicates.h"
#include "platform/encoding.h"

namespace inventory {
namespace {

bool BeginsWith(std::string_view text, std::string_view prefix) { return text.substr(0, prefix.size()) == prefix; }

/// Without the drive, in lower case. The first two have the same names in every language of Windows.
constexpr std::array<std::string_view, 3> Folders = {R"(\program files\)", R"(\program files (x86)\)",
                                                     R"(\programdata\microsoft\windows defender\)"};

bool HasDrive(std::string_view path) { return path.size() > 2 && path[1] == ':' && path[2] == '\\'; }

}  // namespace

SystemFolders::SystemFolders(const Records& records) {
  std::map<std::string, std::size_t> counts;
  for (const Record& record : records) {
    if (!IsService(record)) continue;
    const std::string path = Orvane::LowerCase(record.path);
    const std::size_t end = path.find(R"(\system32\)");
    if (HasDrive(path) && end != std::string::npos) ++counts[path.substr(0, end + 1)];
  }
  const auto most =
      std::max_element(counts.begin(), counts.end(), [](const auto& a, const auto& b) { return a.second < b.second; });
  if (most != counts.end()) m_windows = most->first;
}

bool SystemFolders::Hold(std::string_view path) const {
  const std::string lower = Orvane::LowerCase(path);
  if (!HasDrive(lower)) return true;
  // This would lead out of an allowed folder.
  if (lower.find(R"(\..\)") != std::string::npos) return false;
  const std::string_view behindDrive = std::string_view(lower).substr(2);
  const bool isBelow = std::any_of(Folders.begin(), Folders.end(),
                                   [behindDrive](std::string_view folder) { return BeginsWith(behindDrive, folder); });
  return isBelow || (m_windows.empty() ? BeginsWith(behindDrive, R"(\windows\)") : BeginsWith(lower, m_windows));
}

}  // namespace inventory
