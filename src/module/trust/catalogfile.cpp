#include "trust/catalogfile.h"

#include "trust/file.h"
#include "trust/signerfacts.h"
#include "trust/trustlist.h"

namespace trust {
namespace {

/// The largest catalogs of Windows itself have a few million bytes.
constexpr std::size_t LargestCatalog = std::size_t{1} << 26;

}  // namespace

CatalogFile::CatalogFile(const std::string& path) : m_bytes(ReadSmallFile(path, LargestCatalog)) {
  m_data = ParseSignedData(m_bytes);
  if (m_data && m_data->contentType != TrustListType) m_data.reset();
  if (!m_data) return;
  for (const Bytes digest : ParseTrustList(m_data->content)) m_digests.insert(digest);
  m_content = CheckContent(*m_data);
}

}  // namespace trust
