#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <utility>

#include "drivernames.h"
#include "imagecheck.h"
#include "packagefiles.h"
#include "platform/logline.h"
#include "platform/platformtext.h"
#include "platformquirks.h"

namespace Orvane {
namespace {

/// First entry of an image's translation table.
struct Translation {
  WORD language;
  WORD codePage;
};

/// The translation of the last image that had one. Images without a table of their own are looked up under it; the
/// texts listed for them depend on that.
std::optional<Translation> lastTranslation;

/// Whether it is safe to ask the platform about the image. Checking it first means opening the file once more, so this
/// is done only where it is needed.
bool MayBeAskedAbout(const std::string& path) {
  static const bool survivesAll = SurvivesDamagedImages();
  return survivesAll || IsSoundImage(path);
}

/// The version resource of one image. Its content comes from the file and is not trusted: nothing outside the buffer is
/// read.
class VersionResource {
 public:
  /// Empty if the image cannot be read or has no version resource.
  explicit VersionResource(const std::string& path) {
    if (!MayBeAskedAbout(path)) return;
    DWORD handle = 0;
    const DWORD size = GetFileVersionInfoSizeA(path.c_str(), &handle);
    // No image has room for more; a larger one is damaged.
    constexpr DWORD largest = 64 << 20;
    if (size == 0 || size > largest) return;
    // Zeros after the resource: its lengths are 16-bit numbers from the file, which the platform follows and by which
    // it places the narrow copies of texts. With this room, a damaged resource cannot lead outside the buffer.
    constexpr std::size_t room = 1 << 19;
    m_bytes.reset(static_cast<char*>(VirtualAlloc(nullptr, size + room, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE)));
    if (!m_bytes) throw std::bad_alloc();
    m_size = size + room;
    // If this fails, the buffer holds zeros, in which no query finds anything.
    GetFileVersionInfoA(path.c_str(), handle, size, m_bytes.get());
  }

  bool empty() const { return m_size == 0; }

  /// The file's own translation. Only the value that the query points to counts, not its result or its length.
  std::optional<Translation> FirstTranslation() const {
    void* entry = nullptr;
    UINT length = 0;
    VerQueryValueA(m_bytes.get(), "\\VarFileInfo\\Translation", &entry, &length);
    Translation translation{};
    if (entry == nullptr || !Copy(entry, translation)) return std::nullopt;
    return translation;
  }

  /// The fixed block, filled up with zeros if the buffer ends inside it; nullopt if the query reports no length.
  std::optional<VS_FIXEDFILEINFO> FixedBlock() const {
    const void* const block = Query("\\");
    if (block == nullptr) return std::nullopt;
    VS_FIXEDFILEINFO fixed{};
    Copy(block, fixed);
    return fixed;
  }

  /// The text `key` of the string table of `translation`; empty if there is no such text.
  std::string Text(const Translation& translation, const char* key) const {
    char path[64];
    std::snprintf(path, sizeof(path), "\\StringFileInfo\\%04x%04x\\%s", translation.language, translation.codePage,
                  key);
    return TextWithin(static_cast<const char*>(Query(path)), m_bytes.get(), m_size);
  }

 private:
  struct Free {
    void operator()(char* bytes) const { VirtualFree(bytes, 0, MEM_RELEASE); }
  };

  /// The value that `path` names; null if the query fails or reports no length.
  const void* Query(const char* path) const {
    void* value = nullptr;
    UINT length = 0;
    return VerQueryValueA(m_bytes.get(), path, &value, &length) && length > 0 ? value : nullptr;
  }

  /// Copies from `source`, up to the end of the buffer. True if it filled all of `target`.
  template <typename T>
  bool Copy(const void* source, T& target) const {
    const auto inside = BytesFrom(static_cast<const char*>(source), m_bytes.get(), m_size);
    const std::size_t bytes = std::min(inside.value_or(sizeof(T)), sizeof(T));
    std::memcpy(&target, source, bytes);
    return bytes == sizeof(T);
  }

  // Pages of their own, which are zero and cost nothing until they are touched; most never are.
  std::unique_ptr<char, Free> m_bytes;
  std::size_t m_size = 0;
};

std::string VersionText(DWORD high, DWORD low) {
  char text[150];
  std::snprintf(text, sizeof(text), "%d.%d.%d.%d", HIWORD(high), LOWORD(high), HIWORD(low), LOWORD(low));
  return text;
}

}  // namespace

void PackageFiles::GetDriveInfoFromSysFile(std::string sysFilePath, SysFileInfo& info) {
  ORVANE_LOG(4) << "Enter DriverInfoImp::GetDriveInfoFromSysFile()";
  SysFileInfo read;
  const VersionResource resource(sysFilePath);
  if (!resource.empty()) {
    if (const auto translation = resource.FirstTranslation()) lastTranslation = translation;
    std::string versions;
    if (const auto fixed = resource.FixedBlock()) {
      versions = VersionText(fixed->dwFileVersionMS, fixed->dwFileVersionLS) + ";" +
                 VersionText(fixed->dwProductVersionMS, fixed->dwProductVersionLS);
    }
    SplitAtSemicolon(versions, read.file_version, read.product_version);
    if (lastTranslation) {
      read.description = resource.Text(*lastTranslation, "FileDescription");
      read.company = resource.Text(*lastTranslation, "CompanyName");
    }
  }
  info = std::move(read);
  ORVANE_LOG(4) << "Exiting DriverInfoImp::GetDriveInfoFromSysFile()";
}

void PackageFiles::SplitAtSemicolon(const std::string& text, std::string& before, std::string& after) {
  Orvane::SplitAtSemicolon(text, before, after);
}

}  // namespace Orvane
