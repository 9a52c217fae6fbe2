// Both ways to ask for catalogs, and what is read of a catalog.
#include "trust/catalog.h"

// What the platform's way needs came with Windows 8.
#undef _WIN32_WINNT
#define _WIN32_WINNT 0x0602
#include <gmock/gmock.h>
#include <windows.h>

// After windows.h.
#include <wincrypt.h>
// These need the one before.
#include <mscat.h>
#include <softpub.h>
#include <wintrust.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "importhook.h"
#include "samples.h"
#include "trust/catalogfile.h"
#include "trust/signature.h"
#include "trustedmachine.h"

using test::SamplePath;
using test::ThisProgram;
using test::TrustingMachine;
using testing::ElementsAre;
using trust::Catalogs;
using trust::HashImage;
using trust::Signature;

namespace {

/// State and catalog, such as "valid catalog-1.cat".
std::string AskAbout(const std::string& file, const Catalogs& catalogs = Catalogs()) {
  const Signature signature =
      catalogs.Verify(SamplePath(file), HashImage(SamplePath(file), {true, false, true, false}));
  return std::string(NameOf(signature.state)) + " " + signature.catalog;
}

class CatalogsOfThisMachine : public TrustingMachine {};

TEST_F(CatalogsOfThisMachine, ListFilesBySha1AndBySha256) {
  const Catalogs catalogs;
  EXPECT_EQ(AskAbout("by-catalog-1.sys", catalogs), "valid catalog-1.cat");
  EXPECT_EQ(AskAbout("by-catalog-2.sys", catalogs), "valid catalog-2.cat");
  EXPECT_EQ(AskAbout("unsigned.sys", catalogs), "unsigned ");
  EXPECT_EQ(AskAbout("text.sys", catalogs), "unsigned ");
}

TEST_F(CatalogsOfThisMachine, ListAFileThatIsNoImageByTheHashOfTheFile) {
  EXPECT_EQ(AskAbout("listed.inf"), "valid catalog-2.cat");
  test::RemoveCatalog(SamplePath("catalog-2.cat"));
  EXPECT_EQ(AskAbout("listed.inf"), "valid catalog-1.cat");
}

TEST_F(CatalogsOfThisMachine, ThatDoNotHoldMakeTheFileInvalid) {
  EXPECT_EQ(AskAbout("by-foreign-catalog.sys"), "invalid foreign.cat");
  EXPECT_EQ(AskAbout("by-altered-catalog.sys"), "invalid altered.cat");
}

TEST_F(CatalogsOfThisMachine, AreLookedUpWithoutSha1WhereThatIsNotKnown) {
  trust::Hashes hashes = HashImage(SamplePath("listed.inf"));
  EXPECT_EQ(NameOf(Catalogs().Verify(SamplePath("listed.inf"), hashes).state), "valid");
  hashes.fileSha256.clear();
  EXPECT_EQ(NameOf(Catalogs().Verify(SamplePath("listed.inf"), hashes).state), "unsigned");
}

TEST_F(CatalogsOfThisMachine, AreNeverAskedByHashWhereThePlatformKnowsNoSha256) {
  if (!test::IsWine()) GTEST_SKIP() << "this platform knows SHA-256";
  std::size_t asked = 0;
  HOOK(ask, ThisProgram(), CryptCATAdminEnumCatalogFromHash,
       [&](HCATADMIN, BYTE*, DWORD, DWORD, HCATINFO*) -> HCATINFO {
         ++asked;
         return nullptr;
       });
  EXPECT_EQ(AskAbout("by-catalog-2.sys"), "valid catalog-2.cat");
  EXPECT_EQ(asked, 0u);
}

/// A platform with a catalog database, as Windows 8 has one; it lists what the samples' catalogs list.
class PlatformCatalogs : public TrustingMachine {
 protected:
  void SetUp() override {
    TrustingMachine::SetUp();
    if (IsSkipped()) return;
    // Our own index has nothing to find.
    for (const char* const catalog : {"catalog-1.cat", "catalog-2.cat"}) test::RemoveCatalog(SamplePath(catalog));
    s_acquired.clear();
    s_open = 0;
    m_isWindows = true;
  }

  static BOOL WINAPI Acquire(HCATADMIN* administrator, const GUID*, const WCHAR* algorithm,
                             const CERT_STRONG_SIGN_PARA*, DWORD) {
    s_acquired.push_back(algorithm);
    ++s_open;
    *administrator = algorithm == std::wstring(L"SHA256") ? Sha256 : Sha1;
    return TRUE;
  }

  static inline const HCATADMIN Sha256 = reinterpret_cast<HCATADMIN>(0x256);
  static inline const HCATADMIN Sha1 = reinterpret_cast<HCATADMIN>(0x1);
  static inline const HCATINFO TheCatalog = reinterpret_cast<HCATINFO>(0xCA7);
  static inline std::vector<std::wstring> s_acquired;
  static inline int s_open = 0;

  /// What the platform says that it is.
  bool m_isWindows = false;
  test::ImportHook<&GetProcAddress> m_find{
      ThisProgram(), "GetProcAddress", [this](HMODULE module, const char* name) {
        const std::string function = reinterpret_cast<std::uintptr_t>(name) > 0xFFFF ? name : "";
        if (function == "CryptCATAdminAcquireContext2") {
          return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&Acquire));
        }
        return function == "wine_get_version" && m_isWindows ? nullptr : m_find.Real(module, name);
      }};
  test::ImportHook<&CryptCATAdminReleaseContext> m_release{ThisProgram(), "CryptCATAdminReleaseContext",
                                                           [this](HCATADMIN administrator, DWORD flags) -> BOOL {
                                                             if (administrator != Sha256 && administrator != Sha1)
                                                               return m_release.Real(administrator, flags);
                                                             --s_open;
                                                             return TRUE;
                                                           }};
  /// What was asked for, as "algorithm size", and which catalog is the answer to a hash of that algorithm.
  std::vector<std::string> m_asked;
  HCATADMIN m_listedBy = Sha256;
  std::string m_catalog = "catalog-2.cat";
  test::ImportHook<&CryptCATAdminEnumCatalogFromHash> m_enumerate{
      ThisProgram(), "CryptCATAdminEnumCatalogFromHash",
      [this](HCATADMIN administrator, BYTE*, DWORD size, DWORD, HCATINFO* previous) -> HCATINFO {
        m_asked.push_back((administrator == Sha256 ? "SHA-256 " : "SHA-1 ") + std::to_string(size));
        return administrator == m_listedBy && *previous == nullptr ? TheCatalog : nullptr;
      }};
  test::ImportHook<&CryptCATCatalogInfoFromContext> m_info{
      ThisProgram(), "CryptCATCatalogInfoFromContext", [this](HCATINFO, CATALOG_INFO* info, DWORD) -> BOOL {
        const std::wstring path = std::filesystem::u8path(SamplePath(m_catalog)).wstring();
        path.copy(info->wszCatalogFile, path.size());
        return TRUE;
      }};
  /// What the platform was asked about a member; the catalog's own signature is judged really.
  std::vector<std::wstring> m_tags;
  std::vector<HCATADMIN> m_administrators;
  LONG m_answer = 0;
  test::ImportHook<&WinVerifyTrust> m_verify{
      ThisProgram(), "WinVerifyTrust", [this](HWND window, GUID* action, void* data) -> LONG {
        WINTRUST_DATA question = *static_cast<WINTRUST_DATA*>(data);
        WINTRUST_FILE_INFO file{};
        if (question.dwUnionChoice == WTD_CHOICE_CATALOG && question.dwStateAction == WTD_STATEACTION_VERIFY) {
          m_tags.push_back(question.pCatalog->pcwszMemberTag);
          m_administrators.push_back(question.pCatalog->hCatAdmin);
          if (m_answer != 0) return m_answer;
        }
        if (question.dwUnionChoice == WTD_CHOICE_CATALOG) {
          file.cbStruct = sizeof(file);
          file.pcwszFilePath = question.pCatalog->pcwszCatalogFilePath;
          question.dwUnionChoice = WTD_CHOICE_FILE;
          question.pFile = &file;
        }
        const LONG answer = m_verify.Real(window, action, &question);
        static_cast<WINTRUST_DATA*>(data)->hWVTStateData = question.hWVTStateData;
        return answer;
      }};
};

std::wstring Tag(std::string hash) {
  std::transform(hash.begin(), hash.end(), hash.begin(), [](char c) { return static_cast<char>(std::toupper(c)); });
  return std::wstring(hash.begin(), hash.end());
}

TEST_F(PlatformCatalogs, AreAskedBySha256First) {
  EXPECT_EQ(AskAbout("by-catalog-2.sys"), "valid catalog-2.cat");
  // Once to see whether that is known at all.
  EXPECT_THAT(s_acquired, ElementsAre(L"SHA256", L"SHA256"));
  EXPECT_THAT(m_asked, ElementsAre("SHA-256 32", "SHA-256 32"));
  EXPECT_THAT(m_tags, ElementsAre(Tag(HashImage(SamplePath("by-catalog-2.sys")).imageSha256)));
  EXPECT_THAT(m_administrators, ElementsAre(Sha256));
  EXPECT_EQ(s_open, 0);
}

TEST_F(PlatformCatalogs, AreAskedBySha1WhereSha256IsNotListed) {
  m_listedBy = Sha1;
  m_catalog = "catalog-1.cat";
  EXPECT_EQ(AskAbout("by-catalog-1.sys"), "valid catalog-1.cat");
  EXPECT_THAT(s_acquired, ElementsAre(L"SHA256", L"SHA256", L"SHA1"));
  EXPECT_THAT(m_asked, ElementsAre("SHA-256 32", "SHA-1 20", "SHA-1 20"));
  EXPECT_THAT(m_administrators, ElementsAre(Sha1));
  EXPECT_EQ(s_open, 0);
}

TEST_F(PlatformCatalogs, ThatListNothingLeaveTheFileUnsigned) {
  m_listedBy = nullptr;
  EXPECT_EQ(AskAbout("unsigned.sys"), "unsigned ");
  EXPECT_THAT(m_asked, ElementsAre("SHA-256 32", "SHA-1 20"));
  EXPECT_THAT(m_tags, ElementsAre());
  EXPECT_EQ(s_open, 0);
}

TEST_F(PlatformCatalogs, AreBelievedWhereTheySayNo) {
  m_answer = static_cast<LONG>(0x80096010);
  EXPECT_EQ(AskAbout("by-catalog-2.sys"), "invalid catalog-2.cat");
}

TEST_F(PlatformCatalogs, AreNotBelievedWhereTheCatalogDoesNotListTheFile) {
  EXPECT_EQ(AskAbout("unsigned.sys"), "unknown catalog-2.cat");
  m_catalog = "altered.cat";
  EXPECT_EQ(AskAbout("by-altered-catalog.sys"), "invalid altered.cat");
}

/// The digests that the platform reads of a catalog, as bytes.
std::set<std::string> DigestsByThePlatform(const std::string& catalog) {
  const std::string bytes = test::SampleBytes(catalog);
  std::set<std::string> digests;
  const CTL_CONTEXT* const list =
      CertCreateCTLContext(X509_ASN_ENCODING | PKCS_7_ASN_ENCODING, reinterpret_cast<const BYTE*>(bytes.data()),
                           static_cast<DWORD>(bytes.size()));
  if (list == nullptr) return digests;
  for (DWORD i = 0; i < list->pCtlInfo->cCTLEntry; ++i) {
    const CTL_ENTRY& entry = list->pCtlInfo->rgCTLEntry[i];
    for (DWORD k = 0; k < entry.cAttribute; ++k) {
      const CRYPT_ATTRIBUTE& attribute = entry.rgAttribute[k];
      if (attribute.pszObjId != std::string(SPC_INDIRECT_DATA_OBJID)) continue;
      SPC_INDIRECT_DATA_CONTENT* content = nullptr;
      DWORD size = 0;
      if (!CryptDecodeObjectEx(X509_ASN_ENCODING | PKCS_7_ASN_ENCODING, SPC_INDIRECT_DATA_CONTENT_STRUCT,
                               attribute.rgValue[0].pbData, attribute.rgValue[0].cbData, CRYPT_DECODE_ALLOC_FLAG,
                               nullptr, &content, &size)) {
        continue;
      }
      digests.emplace(reinterpret_cast<const char*>(content->Digest.pbData), content->Digest.cbData);
      LocalFree(content);
    }
  }
  CertFreeCTLContext(list);
  return digests;
}

TEST(CatalogFiles, ListWhatThePlatformReadsOfThem) {
  std::size_t members = 0;
  for (const char* const catalog : {"catalog-1.cat", "catalog-2.cat", "foreign.cat", "altered.cat"}) {
    const trust::CatalogFile file(SamplePath(catalog));
    std::set<std::string> digests;
    for (const trust::Bytes digest : file.Digests()) digests.emplace(digest);
    EXPECT_EQ(digests, DigestsByThePlatform(catalog)) << catalog;
    members += digests.size();
  }
  EXPECT_EQ(members, 7u);
}

TEST(CatalogFiles, ListNothingWhereTheyAreNone) {
  for (const char* const file : {"signed.sys", "root.der", "text.sys", "empty.sys", "no-such.cat"}) {
    const trust::CatalogFile catalog(SamplePath(file));
    EXPECT_FALSE(catalog.Data()) << file;
    EXPECT_TRUE(catalog.Digests().empty()) << file;
  }
}

}  // namespace
