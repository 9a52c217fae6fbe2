#include "trust/signeddata.h"

#include <algorithm>

#include "trust/der.h"

namespace trust {
namespace {

constexpr std::string_view SignedDataType = "1.2.840.113549.1.7.2";
constexpr std::string_view ContentTypeAttribute = "1.2.840.113549.1.9.3";
constexpr std::string_view MessageDigestAttribute = "1.2.840.113549.1.9.4";
constexpr std::string_view SigningTimeAttribute = "1.2.840.113549.1.9.5";
constexpr std::string_view CounterSignatureAttribute = "1.2.840.113549.1.9.6";
constexpr std::string_view OpusInfoAttribute = "1.3.6.1.4.1.311.2.1.12";
constexpr std::string_view NestedSignatureAttribute = "1.3.6.1.4.1.311.2.4.1";
constexpr std::string_view TimeStampAttribute = "1.3.6.1.4.1.311.3.3.1";
constexpr std::string_view TimeStampType = "1.2.840.113549.1.9.16.1.4";

/// The identifier at the beginning of an algorithm; empty if there is no identifier.
std::string AlgorithmOid(std::optional<Bytes> algorithm) {
  const auto oid = algorithm ? DerReader(*algorithm).Content(DerOid) : std::nullopt;
  return oid ? OidText(*oid) : std::string();
}

/// Calls `take(name, values)` for each attribute, `values` being a reader of the set of its values.
template <typename Take>
void ForEachAttribute(Bytes attributes, Take take) {
  DerReader reader(attributes);
  while (const auto attribute = reader.Content(DerSequence)) {
    DerReader parts(*attribute);
    const auto oid = parts.Content(DerOid);
    const auto values = parts.Content(DerSet);
    if (oid && values) take(OidText(*oid), DerReader(*values));
  }
}

/// SpcSpOpusInfo: the name, [0], is either a text of two-byte characters, [0], or of ASCII, [1].
std::string ReadProgramName(DerReader values) {
  constexpr unsigned char wide = 0x80;
  const auto info = values.Content(DerSequence);
  const auto name = info ? DerReader(*info).Content(DerContext0) : std::nullopt;
  const auto text = name ? DerReader(*name).Next() : std::nullopt;
  if (!text) return {};
  return text->tag == wide ? Utf16BigEndianText(text->content) : StringText(*text);
}

/// The parts of signed data.
struct Content {
  std::string type;
  /// Without tag and length.
  Bytes content;
  /// What follows: certificates, signers.
  DerReader rest;
};

std::optional<Content> ReadContent(Bytes encoded) {
  DerReader outer(encoded);
  DerReader message(outer.Content(DerSequence).value_or(Bytes()));
  const auto messageType = message.Content(DerOid);
  if (!messageType || OidText(*messageType) != SignedDataType) return std::nullopt;
  DerReader wrapper(message.Content(DerContext0).value_or(Bytes()));
  DerReader parts(wrapper.Content(DerSequence).value_or(Bytes()));
  const auto version = parts.Next(DerInteger);
  const auto algorithms = parts.Next(DerSet);
  DerReader wrapped(parts.Content(DerSequence).value_or(Bytes()));
  const auto type = wrapped.Content(DerOid);
  const auto content = DerReader(wrapped.Content(DerContext0).value_or(Bytes())).Next();
  if (!version || !algorithms || !type || !content) return std::nullopt;
  return Content{OidText(*type), content->content, parts};
}

/// A time stamp of RFC 3161: signed data, whose content is a sequence within an octet string. Neither its own signature
/// nor stamps within it are looked at, so that nested stamps lead nowhere.
std::optional<TimeStamp> ReadTimeStamp(Bytes encoded) {
  const auto token = ReadContent(encoded);
  if (!token || token->type != TimeStampType) return std::nullopt;
  DerReader reader(DerReader(token->content).Content(DerSequence).value_or(Bytes()));
  const auto version = reader.Next(DerInteger);
  const auto policy = reader.Next(DerOid);
  const auto imprint = reader.Content(DerSequence);
  const auto serial = reader.Next(DerInteger);
  const auto time = reader.Next(DerGeneralizedTime);
  if (!version || !policy || !imprint || !serial || !time) return std::nullopt;
  TimeStamp stamp;
  DerReader parts(*imprint);
  stamp.digestAlgorithm = AlgorithmOid(parts.Content(DerSequence));
  stamp.imprint = parts.Content(DerOctets).value_or(Bytes());
  stamp.time = TimeText(*time);
  return stamp;
}

struct SignerParts {
  Bytes issuer;
  Bytes serial;
  std::string digestAlgorithm;
  Bytes signedAttributes;
  Bytes signature;
  Bytes furtherAttributes;
};

std::optional<SignerParts> ReadSignerParts(Bytes signerInfo) {
  SignerParts signer;
  DerReader reader(signerInfo);
  const auto version = reader.Next(DerInteger);
  const auto identifier = reader.Content(DerSequence);
  const auto digestAlgorithm = reader.Content(DerSequence);
  signer.signedAttributes = reader.Content(DerContext0).value_or(Bytes());
  const auto algorithm = reader.Next(DerSequence);
  const auto signature = reader.Content(DerOctets);
  signer.furtherAttributes = reader.Content(DerContext1).value_or(Bytes());
  if (!version || !identifier || !digestAlgorithm || !algorithm || !signature) return std::nullopt;
  DerReader names(*identifier);
  const auto issuer = names.Next(DerSequence);
  const auto serial = names.Content(DerInteger);
  if (!issuer || !serial) return std::nullopt;
  signer.issuer = issuer->whole;
  signer.serial = *serial;
  signer.digestAlgorithm = AlgorithmOid(digestAlgorithm);
  signer.signature = *signature;
  return signer;
}

/// A time stamp of PKCS #9: a signature over the signature, with the time among its signed attributes.
std::optional<TimeStamp> ReadCounterSignature(DerReader values) {
  const auto encoded = values.Content(DerSequence);
  const auto signer = encoded ? ReadSignerParts(*encoded) : std::nullopt;
  if (!signer) return std::nullopt;
  TimeStamp stamp;
  stamp.digestAlgorithm = signer->digestAlgorithm;
  ForEachAttribute(signer->signedAttributes, [&](const std::string& name, DerReader value) {
    if (name == MessageDigestAttribute) stamp.imprint = value.Content(DerOctets).value_or(Bytes());
    if (name == SigningTimeAttribute) {
      if (const auto time = value.Next()) stamp.time = TimeText(*time);
    }
  });
  return stamp;
}

void ReadSignedAttribute(const std::string& name, DerReader values, SignerInfo& signer) {
  if (name == MessageDigestAttribute) signer.messageDigest = values.Content(DerOctets).value_or(Bytes());
  if (name == ContentTypeAttribute) signer.contentType = OidText(values.Content(DerOid).value_or(Bytes()));
  if (name == OpusInfoAttribute) signer.programName = ReadProgramName(values);
}

void ReadFurtherAttribute(const std::string& name, DerReader values, SignerInfo& signer) {
  if (name == TimeStampAttribute) {
    const auto token = values.Next();
    if (auto stamp = token ? ReadTimeStamp(token->whole) : std::nullopt) signer.timeStamps.push_back(std::move(*stamp));
  }
  if (name == CounterSignatureAttribute) {
    if (auto stamp = ReadCounterSignature(values)) signer.timeStamps.push_back(std::move(*stamp));
  }
  if (name == NestedSignatureAttribute) {
    while (const auto nested = values.Next(DerSequence)) signer.nested.push_back(nested->whole);
  }
}

std::optional<SignerInfo> ReadSigner(Bytes signerInfo) {
  const auto parts = ReadSignerParts(signerInfo);
  if (!parts) return std::nullopt;
  SignerInfo signer;
  signer.issuer = parts->issuer;
  signer.serial = parts->serial;
  signer.digestAlgorithm = parts->digestAlgorithm;
  signer.signature = parts->signature;
  ForEachAttribute(parts->signedAttributes,
                   [&](const std::string& name, DerReader values) { ReadSignedAttribute(name, values, signer); });
  ForEachAttribute(parts->furtherAttributes,
                   [&](const std::string& name, DerReader values) { ReadFurtherAttribute(name, values, signer); });
  return signer;
}

}  // namespace

const X509* SignedData::SignerCertificate() const {
  const auto found = std::find_if(certificates.begin(), certificates.end(), [&](const X509& certificate) {
    return certificate.issuer == signer.issuer && certificate.serial == signer.serial;
  });
  return found == certificates.end() ? nullptr : &*found;
}

std::optional<SignedData> ParseSignedData(Bytes encoded) {
  auto content = ReadContent(encoded);
  if (!content) return std::nullopt;
  SignedData data;
  data.contentType = content->type;
  data.content = content->content;
  DerReader certificates(content->rest.Content(DerContext0).value_or(Bytes()));
  while (const auto certificate = certificates.Next()) {
    if (auto parsed = ParseX509(certificate->whole)) data.certificates.push_back(std::move(*parsed));
  }
  // Revocation lists.
  content->rest.Next(DerContext1);
  DerReader signers(content->rest.Content(DerSet).value_or(Bytes()));
  const auto first = signers.Content(DerSequence);
  auto signer = first ? ReadSigner(*first) : std::nullopt;
  if (!signer) return std::nullopt;
  data.signer = std::move(*signer);
  return data;
}

std::optional<ListedDigest> ParseIndirectData(Bytes content) {
  DerReader reader(content);
  // What kind of file it is.
  const auto kind = reader.Next(DerSequence);
  DerReader info(reader.Content(DerSequence).value_or(Bytes()));
  const std::string algorithm = AlgorithmOid(info.Content(DerSequence));
  const auto digest = info.Content(DerOctets);
  if (!kind || !digest) return std::nullopt;
  return ListedDigest{algorithm, *digest};
}

Bytes FirstSignature(Bytes certificateTable) {
  constexpr std::size_t headerSize = 8;
  constexpr unsigned signedDataKind = 2;
  if (certificateTable.size() <= headerSize) return {};
  const auto byte = [&](std::size_t index) -> std::size_t {
    return static_cast<unsigned char>(certificateTable[index]);
  };
  const std::size_t length = byte(0) | byte(1) << 8 | byte(2) << 16 | byte(3) << 24;
  if (length <= headerSize || (byte(6) | byte(7) << 8) != signedDataKind) return {};
  return certificateTable.substr(headerSize, length - headerSize);
}

}  // namespace trust
