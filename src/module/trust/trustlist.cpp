#include "trust/trustlist.h"

#include "trust/der.h"
#include "trust/signeddata.h"

namespace trust {
namespace {

/// The digest of a member, from the indirect data among its attributes.
std::optional<Bytes> ReadMember(Bytes member) {
  DerReader reader(member);
  const auto identifier = reader.Content(DerOctets);
  DerReader attributes(reader.Content(DerSet).value_or(Bytes()));
  while (const auto attribute = attributes.Content(DerSequence)) {
    DerReader parts(*attribute);
    const auto name = parts.Content(DerOid);
    if (!name || OidText(*name) != IndirectDataType) continue;
    DerReader values(parts.Content(DerSet).value_or(Bytes()));
    const auto listed = ParseIndirectData(values.Content(DerSequence).value_or(Bytes()));
    if (listed) return listed->digest;
  }
  // Short catalogs of version 2 have no digest other than the member's identifier.
  constexpr std::size_t sha256Size = 32;
  if (identifier && identifier->size() == sha256Size) return identifier;
  return std::nullopt;
}

}  // namespace

std::vector<Bytes> ParseTrustList(Bytes content) {
  std::vector<Bytes> digests;
  DerReader reader(content);
  // The members follow version, usage, identifier, number, dates and algorithm, some of which may be missing.
  reader.Next(DerInteger);
  if (!reader.Next(DerSequence)) return digests;
  reader.Next(DerOctets);
  reader.Next(DerInteger);
  while (reader.Next(DerUtcTime) || reader.Next(DerGeneralizedTime)) {
  }
  if (!reader.Next(DerSequence)) return digests;
  DerReader members(reader.Content(DerSequence).value_or(Bytes()));
  while (const auto member = members.Content(DerSequence)) {
    if (const auto digest = ReadMember(*member)) digests.push_back(*digest);
  }
  return digests;
}

}  // namespace trust
