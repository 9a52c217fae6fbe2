#include <windows.h>

#include <map>
#include <mutex>

#include "platform/encoding.h"
#include "platform/handles.h"
#include "trust/catalogfile.h"
#include "trust/catalogstore.h"

namespace trust {
namespace {

/// Paths of what matches in `folder`: either folders only or files only.
std::vector<std::string> Entries(const std::string& folder, const char* pattern, bool folders) {
  std::vector<std::string> paths;
  WIN32_FIND_DATAW entry;
  const std::wstring search = Orvane::WideFromUtf8(folder + "\\" + pattern);
  const Orvane::FindHandle find(FindFirstFileW(search.c_str(), &entry));
  if (!find) return paths;
  do {
    const bool isFolder = (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if (isFolder == folders && entry.cFileName[0] != L'.') {
      paths.push_back(folder + "\\" + Orvane::Utf8FromWide(entry.cFileName));
    }
  } while (FindNextFileW(find.get(), &entry));
  return paths;
}

std::string CatRoot() {
  wchar_t path[MAX_PATH];
  const UINT length = GetSystemDirectoryW(path, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return {};
  return Orvane::Utf8FromWide(std::wstring_view(path, length)) + "\\CatRoot";
}

class CatRootIndex : public CatalogStore {
 public:
  CatRootIndex() {
    // There is one folder for each kind of catalog, named by a GUID.
    for (const std::string& folder : Entries(CatRoot(), "{*}", true)) {
      for (const std::string& catalog : Entries(folder, "*.cat", false)) {
        const CatalogFile file(catalog);
        for (const Bytes digest : file.Digests()) m_catalogs.emplace(digest, catalog);
      }
    }
  }

  std::vector<CatalogVerdict> Ask(const std::string&, const MemberHash& hash) override {
    std::vector<CatalogVerdict> verdicts;
    const auto [begin, end] = m_catalogs.equal_range(hash.bytes);
    for (auto entry = begin; entry != end; ++entry) verdicts.push_back({entry->second, VerdictOf(entry->second)});
    return verdicts;
  }

 private:
  /// A catalog's own signature is the same for all of its members.
  PlatformVerdict VerdictOf(const std::string& catalog) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto known = m_verdicts.find(catalog);
    if (known != m_verdicts.end()) return known->second;
    return m_verdicts.emplace(catalog, AskAboutFile(catalog, CatalogFile(catalog).Encoded())).first->second;
  }

  /// From digest, as bytes, to path.
  std::multimap<std::string, std::string> m_catalogs;
  std::mutex m_mutex;
  std::map<std::string, PlatformVerdict> m_verdicts;
};

}  // namespace

std::unique_ptr<CatalogStore> IndexCatRoot() { return std::make_unique<CatRootIndex>(); }

}  // namespace trust
