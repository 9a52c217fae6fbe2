// The functions asked here came with Windows 8; earlier versions are not asked.
#undef _WIN32_WINNT
#define _WIN32_WINNT 0x0602
#include <windows.h>

// After windows.h, in this order.
#include <bcrypt.h>
#include <wincrypt.h>
// mscat.h needs it.
#include <mscat.h>
#include <softpub.h>

#include "platform/encoding.h"
#include "platform/handles.h"
#include "platform/platformtext.h"
#include "platform/wine.h"
#include "trust/catalogstore.h"

namespace trust {
namespace {

using AcquireContext2 = BOOL(WINAPI*)(HCATADMIN*, const GUID*, const WCHAR*, const CERT_STRONG_SIGN_PARA*, DWORD);

void ReleaseAdministrator(HCATADMIN administrator) { CryptCATAdminReleaseContext(administrator, 0); }
using Administrator = Orvane::UniqueHandle<HCATADMIN, &ReleaseAdministrator>;

/// Not in all import libraries, and not in Windows 7.
AcquireContext2 FindAcquireContext2() {
  const HMODULE module = GetModuleHandleW(L"wintrust.dll");
  if (module == nullptr) return nullptr;
  return reinterpret_cast<AcquireContext2>(
      reinterpret_cast<void*>(GetProcAddress(module, "CryptCATAdminAcquireContext2")));
}

Administrator Acquire(AcquireContext2 acquire, DigestAlgorithm algorithm) {
  const GUID subsystem = DRIVER_ACTION_VERIFY;
  const wchar_t* const name = algorithm == DigestAlgorithm::Sha256 ? BCRYPT_SHA256_ALGORITHM : BCRYPT_SHA1_ALGORITHM;
  HCATADMIN administrator = nullptr;
  if (!acquire(&administrator, &subsystem, name, nullptr, 0)) return Administrator();
  return Administrator(administrator);
}

/// The paths of the catalogs that list `hash`.
std::vector<std::string> CatalogsWith(HCATADMIN administrator, std::string hash) {
  // A file is in one catalog or two; the limit is for a platform whose list never ends.
  constexpr std::size_t most = 64;
  std::vector<std::string> paths;
  HCATINFO current = nullptr;
  while (paths.size() < most) {
    // The call releases the previous one.
    HCATINFO previous = current;
    current = CryptCATAdminEnumCatalogFromHash(administrator, reinterpret_cast<BYTE*>(hash.data()),
                                               static_cast<DWORD>(hash.size()), 0, &previous);
    if (current == nullptr) return paths;
    CATALOG_INFO info{};
    info.cbStruct = sizeof(info);
    if (!CryptCATCatalogInfoFromContext(current, &info, 0)) continue;
    paths.push_back(Orvane::Utf8FromWide(Orvane::BoundedText(info.wszCatalogFile, MAX_PATH)));
  }
  CryptCATAdminReleaseCatalogContext(administrator, current, 0);
  return paths;
}

class PlatformCatalogs : public CatalogStore {
 public:
  explicit PlatformCatalogs(AcquireContext2 acquire) : m_acquire(acquire) {}

  std::vector<CatalogVerdict> Ask(const std::string& path, const MemberHash& hash) override {
    std::vector<CatalogVerdict> verdicts;
    // Each question has its own, so that threads share nothing.
    const Administrator administrator = Acquire(m_acquire, hash.algorithm);
    if (!administrator) return verdicts;
    for (const std::string& catalog : CatalogsWith(administrator.get(), hash.bytes)) {
      verdicts.push_back({catalog, AskAboutMember({catalog, path, hash.bytes, administrator.get()})});
    }
    return verdicts;
  }

 private:
  AcquireContext2 m_acquire;
};

}  // namespace

std::unique_ptr<CatalogStore> OpenPlatformCatalogs() {
  // Wine 10 accepts SHA-256, but finds nothing by it, and ends the process when a look-up by SHA-1 meets a catalog that
  // is signed with SHA-256.
  if (Orvane::IsWine()) return nullptr;
  const AcquireContext2 acquire = FindAcquireContext2();
  if (acquire == nullptr || !Acquire(acquire, DigestAlgorithm::Sha256)) return nullptr;
  return std::make_unique<PlatformCatalogs>(acquire);
}

}  // namespace trust
