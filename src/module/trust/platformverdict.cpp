// The member of WINTRUST_CATALOG_INFO for the catalog administrator came with Windows 8; earlier versions are never
// asked about members of catalogs.
#undef _WIN32_WINNT
#define _WIN32_WINNT 0x0602
#include "trust/platformverdict.h"

#include <windows.h>

// After windows.h.
#include <wincrypt.h>
// mscat.h needs it.
#include <mscat.h>
#include <softpub.h>
#include <wintrust.h>

#include <algorithm>

#include "platform/encoding.h"
#include "trust/x509.h"

namespace trust {
namespace {

/// The chain of the first signer; further signers do not change it.
void ReadChain(HANDLE state, PlatformVerdict& verdict) {
  CRYPT_PROVIDER_DATA* const provider = WTHelperProvDataFromStateData(state);
  CRYPT_PROVIDER_SGNR* const signer =
      provider == nullptr ? nullptr : WTHelperGetProvSignerFromChain(provider, 0, FALSE, 0);
  if (signer == nullptr || signer->pChainContext == nullptr || signer->pChainContext->cChain == 0) return;
  const CERT_CHAIN_CONTEXT& context = *signer->pChainContext;
  verdict.hasChain = true;
  verdict.chainErrors = context.TrustStatus.dwErrorStatus;
  const CERT_SIMPLE_CHAIN& chain = *context.rgpChain[0];
  for (DWORD i = 0; i < chain.cElement; ++i) {
    const CERT_CONTEXT& certificate = *chain.rgpElement[i]->pCertContext;
    verdict.chain.emplace_back(reinterpret_cast<const char*>(certificate.pbCertEncoded), certificate.cbCertEncoded);
  }
}

PlatformVerdict Ask(WINTRUST_DATA& question) {
  question.cbStruct = sizeof(question);
  question.dwUIChoice = WTD_UI_NONE;
  question.fdwRevocationChecks = WTD_REVOKE_NONE;
  question.dwProvFlags = WTD_CACHE_ONLY_URL_RETRIEVAL;
  // The action for drivers is less strict: on some platforms, expired and untrusted signers pass.
  GUID action = WINTRUST_ACTION_GENERIC_VERIFY_V2;
  const auto nobody = static_cast<HWND>(INVALID_HANDLE_VALUE);

  PlatformVerdict verdict;
  question.dwStateAction = WTD_STATEACTION_VERIFY;
  verdict.code = static_cast<std::uint32_t>(WinVerifyTrust(nobody, &action, &question));
  if (question.hWVTStateData != nullptr) ReadChain(question.hWVTStateData, verdict);
  question.dwStateAction = WTD_STATEACTION_CLOSE;
  WinVerifyTrust(nobody, &action, &question);
  return verdict;
}

/// The tag of a member is its hash in upper case.
std::wstring MemberTag(const std::string& hash) {
  std::string tag = Hex(hash);
  std::transform(tag.begin(), tag.end(), tag.begin(),
                 [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
  return Orvane::WideFromUtf8(tag);
}

}  // namespace

PlatformVerdict AskAboutFile(const std::string& path, Bytes encoded) {
  if (!KeyUsagesAreWhole(encoded)) {
    PlatformVerdict malformed;
    malformed.code = static_cast<std::uint32_t>(CRYPT_E_ASN1_CORRUPT);
    return malformed;
  }
  const std::wstring widePath = Orvane::WideFromUtf8(path);
  WINTRUST_FILE_INFO file{};
  file.cbStruct = sizeof(file);
  file.pcwszFilePath = widePath.c_str();
  WINTRUST_DATA question{};
  question.dwUnionChoice = WTD_CHOICE_FILE;
  question.pFile = &file;
  return Ask(question);
}

PlatformVerdict AskAboutMember(const CatalogMember& member) {
  const std::wstring catalogPath = Orvane::WideFromUtf8(member.catalog);
  const std::wstring filePath = Orvane::WideFromUtf8(member.file);
  const std::wstring tag = MemberTag(member.hash);
  std::string hash = member.hash;
  WINTRUST_CATALOG_INFO catalog{};
  catalog.cbStruct = sizeof(catalog);
  catalog.pcwszCatalogFilePath = catalogPath.c_str();
  catalog.pcwszMemberTag = tag.c_str();
  catalog.pcwszMemberFilePath = filePath.c_str();
  catalog.pbCalculatedFileHash = reinterpret_cast<BYTE*>(hash.data());
  catalog.cbCalculatedFileHash = static_cast<DWORD>(hash.size());
  catalog.hCatAdmin = static_cast<HCATADMIN>(member.administrator);
  WINTRUST_DATA question{};
  question.dwUnionChoice = WTD_CHOICE_CATALOG;
  question.pCatalog = &catalog;
  return Ask(question);
}

}  // namespace trust
