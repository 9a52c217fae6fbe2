#include "trust/x509.h"

#include <array>

#include "trust/der.h"

namespace trust {
namespace {

/// The object identifiers in a sequence: its elements, or the first of each element that is a sequence itself.
std::vector<std::string> ReadIdentifiers(Bytes sequence) {
  std::vector<std::string> identifiers;
  DerReader outer(sequence);
  const auto list = outer.Content(DerSequence);
  if (!list) return identifiers;
  DerReader reader(*list);
  while (const auto element = reader.Next()) {
    if (element->tag == DerOid) {
      identifiers.push_back(OidText(element->content));
    } else if (const auto oid = DerReader(element->content).Content(DerOid)) {
      identifiers.push_back(OidText(*oid));
    }
  }
  return identifiers;
}

void ReadExtension(Bytes extension, X509& certificate) {
  DerReader reader(extension);
  const auto oid = reader.Content(DerOid);
  // Whether it is critical.
  reader.Next(DerBoolean);
  const auto value = reader.Content(DerOctets);
  if (!oid || !value) return;
  const std::string name = OidText(*oid);
  if (name == "2.5.29.37") certificate.usages = ReadIdentifiers(*value);
  if (name == "2.5.29.32") certificate.policies = ReadIdentifiers(*value);
}

void ReadExtensions(DerReader& toBeSigned, X509& certificate) {
  while (const auto element = toBeSigned.Next()) {
    if (element->tag != DerContext3) continue;
    const auto list = DerReader(element->content).Content(DerSequence);
    if (!list) return;
    DerReader reader(*list);
    while (const auto extension = reader.Content(DerSequence)) ReadExtension(*extension, certificate);
  }
}

}  // namespace

std::optional<X509> ParseX509(Bytes encoded) {
  X509 certificate;
  DerReader outer(encoded);
  const auto whole = outer.Next(DerSequence);
  if (!whole) return std::nullopt;
  certificate.whole = whole->whole;
  DerReader parts(whole->content);
  const auto toBeSigned = parts.Next(DerSequence);
  const auto algorithm = parts.Content(DerSequence);
  const auto algorithmOid = algorithm ? DerReader(*algorithm).Content(DerOid) : std::nullopt;
  if (!toBeSigned || !algorithmOid) return std::nullopt;
  certificate.toBeSigned = toBeSigned->whole;
  certificate.signatureAlgorithm = OidText(*algorithmOid);

  DerReader reader(toBeSigned->content);
  // The version, which certificates of version 1 do not state.
  reader.Next(DerContext0);
  const auto serial = reader.Content(DerInteger);
  const auto innerAlgorithm = reader.Next(DerSequence);
  const auto issuer = reader.Next(DerSequence);
  const auto validity = reader.Next(DerSequence);
  const auto subject = reader.Next(DerSequence);
  const auto key = reader.Next(DerSequence);
  if (!serial || !innerAlgorithm || !issuer || !validity || !subject || !key) return std::nullopt;
  certificate.serial = *serial;
  certificate.issuer = issuer->whole;
  certificate.subject = subject->whole;
  ReadExtensions(reader, certificate);
  return certificate;
}

bool KeyUsagesAreWhole(Bytes encoded) {
  // Wherever it stands: the platform may accept a certificate that this reader does not.
  constexpr Bytes keyUsage = "\x06\x03\x55\x1D\x0F";
  for (std::size_t at = encoded.find(keyUsage); at != Bytes::npos; at = encoded.find(keyUsage, at + 1)) {
    DerReader extension(encoded.substr(at + keyUsage.size()));
    // Whether it is critical.
    extension.Next(DerBoolean);
    DerReader value(extension.Content(DerOctets).value_or(Bytes()));
    // The number of unused bits in the last byte, and at least one byte.
    if (value.Content(DerBitString).value_or(Bytes()).size() < 2) return false;
  }
  return true;
}

std::string DisplayName(Bytes name) {
  // In order of preference.
  constexpr std::string_view attributes[] = {"2.5.4.3", "2.5.4.10", "2.5.4.11"};
  std::array<std::string, std::size(attributes)> texts;
  DerReader outer(name);
  const auto parts = outer.Content(DerSequence);
  DerReader reader(parts ? *parts : Bytes());
  while (const auto set = reader.Content(DerSet)) {
    DerReader members(*set);
    while (const auto member = members.Content(DerSequence)) {
      DerReader pair(*member);
      const auto oid = pair.Content(DerOid);
      const auto value = pair.Next();
      if (!oid || !value) continue;
      const std::string attribute = OidText(*oid);
      for (std::size_t i = 0; i < texts.size(); ++i) {
        if (attribute == attributes[i]) texts[i] = StringText(*value);
      }
    }
  }
  for (const std::string& text : texts) {
    if (!text.empty()) return text;
  }
  return {};
}

}  // namespace trust
