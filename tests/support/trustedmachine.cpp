#include "trustedmachine.h"

#include <windows.h>

// After windows.h.
#include <wincrypt.h>
// These need the one before.
#include <mscat.h>
#include <softpub.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "machine.h"
#include "platform/encoding.h"
#include "platform/handles.h"

namespace test {
namespace {

void CloseStore(HCERTSTORE store) { CertCloseStore(store, 0); }
void ReleaseAdministrator(HCATADMIN administrator) { CryptCATAdminReleaseContext(administrator, 0); }
using Store = Orvane::UniqueHandle<HCERTSTORE, &CloseStore>;
using Administrator = Orvane::UniqueHandle<HCATADMIN, &ReleaseAdministrator>;

void Require(bool success, const std::string& what) {
  if (!success) throw std::runtime_error(what + " failed with error " + std::to_string(GetLastError()));
}

std::string ReadFileAt(const std::string& path) {
  std::ifstream file(std::filesystem::u8path(path), std::ios::binary);
  if (!file) throw std::runtime_error(path + " cannot be read");
  return std::string(std::istreambuf_iterator<char>(file), {});
}

Store OpenRoots() {
  // Wine 10 removes from the machine's store what its host does not trust. Windows asks before it changes the user's.
  const DWORD place = IsWine() ? CERT_SYSTEM_STORE_CURRENT_USER : CERT_SYSTEM_STORE_LOCAL_MACHINE;
  Store store(CertOpenStore(CERT_STORE_PROV_SYSTEM_W, 0, 0, place, L"ROOT"));
  Require(static_cast<bool>(store), "opening the trusted roots");
  return store;
}

Administrator OpenCatalogs() {
  const GUID drivers = DRIVER_ACTION_VERIFY;
  HCATADMIN administrator = nullptr;
  Require(CryptCATAdminAcquireContext(&administrator, &drivers, 0), "opening the catalogs");
  return Administrator(administrator);
}

std::wstring NameOfFile(const std::string& path) { return std::filesystem::u8path(path).filename().wstring(); }

}  // namespace

void AddTrustedRoot(const std::string& path) {
  const std::string bytes = ReadFileAt(path);
  const Store store = OpenRoots();
  Require(CertAddEncodedCertificateToStore(store.get(), X509_ASN_ENCODING, reinterpret_cast<const BYTE*>(bytes.data()),
                                           static_cast<DWORD>(bytes.size()), CERT_STORE_ADD_REPLACE_EXISTING, nullptr),
          "trusting " + path);
}

void RemoveTrustedRoot(const std::string& path) {
  const std::string bytes = ReadFileAt(path);
  const Store store = OpenRoots();
  const CERT_CONTEXT* const wanted = CertCreateCertificateContext(
      X509_ASN_ENCODING, reinterpret_cast<const BYTE*>(bytes.data()), static_cast<DWORD>(bytes.size()));
  Require(wanted != nullptr, "reading " + path);
  const CERT_CONTEXT* const found =
      CertFindCertificateInStore(store.get(), X509_ASN_ENCODING, 0, CERT_FIND_EXISTING, wanted, nullptr);
  CertFreeCertificateContext(wanted);
  // Deleting frees it too.
  if (found != nullptr) Require(CertDeleteCertificateFromStore(found), "no longer trusting " + path);
}

void AddCatalog(const std::string& path) {
  const Administrator administrator = OpenCatalogs();
  std::wstring from = std::filesystem::u8path(path).make_preferred().wstring();
  std::wstring name = NameOfFile(path);
  const HCATINFO catalog = CryptCATAdminAddCatalog(administrator.get(), from.data(), name.data(), 0);
  Require(catalog != nullptr, "installing " + path);
  CryptCATAdminReleaseCatalogContext(administrator.get(), catalog, 0);
}

void RemoveCatalog(const std::string& path) {
  const Administrator administrator = OpenCatalogs();
  CryptCATAdminRemoveCatalog(administrator.get(), NameOfFile(path).c_str(), 0);
}

}  // namespace test
