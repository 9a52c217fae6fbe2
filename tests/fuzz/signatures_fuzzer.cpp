// Signatures, catalogs, certificates and time stamps of any bytes: nothing is read outside of them, and every text is
// UTF-8.
#include <functional>

#include "model.h"
#include "trust/der.h"
#include "trust/imagelayout.h"
#include "trust/signeddata.h"
#include "trust/trustlist.h"

using trust::Bytes;

namespace {

void Require(const char* rule, bool holds) { model::Expect(rule, holds ? "holds" : "does not hold", "holds"); }

/// Whether `part` is empty or within `all`.
void RequireWithin(Bytes all, Bytes part) {
  const std::less_equal<const char*> notBehind;
  Require("parts are within the bytes",
          part.empty() ||
              (notBehind(all.data(), part.data()) && notBehind(part.data() + part.size(), all.data() + all.size())));
}

/// UTF-8 without control characters.
void RequireText(const std::string& text) {
  for (std::size_t i = 0; i < text.size();) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const std::size_t size = byte < 0x80 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
    Require("a character begins where one can", (byte < 0x80 || byte >= 0xC2) && byte < 0xF5);
    Require("no control characters", byte >= 0x20 && byte != 0x7F);
    Require("characters are whole", i + size <= text.size());
    for (std::size_t k = 1; k < size; ++k) {
      Require("a character goes on", (static_cast<unsigned char>(text[i + k]) & 0xC0) == 0x80);
    }
    i += size;
  }
}

void RequireTime(const std::string& time) {
  Require("times have one form", time.empty() || (time.size() == 20 && time[10] == 'T' && time.back() == 'Z'));
}

void CheckCertificate(Bytes all, const trust::X509& certificate) {
  for (const Bytes part :
       {certificate.whole, certificate.toBeSigned, certificate.serial, certificate.issuer, certificate.subject}) {
    RequireWithin(all, part);
  }
  RequireText(trust::DisplayName(certificate.issuer));
  RequireText(trust::DisplayName(certificate.subject));
}

void CheckSignature(Bytes encoded, int depth) {
  const auto data = trust::ParseSignedData(encoded);
  if (!data) return;
  RequireWithin(encoded, data->content);
  for (const trust::X509& certificate : data->certificates) CheckCertificate(encoded, certificate);
  if (const trust::X509* const signer = data->SignerCertificate()) {
    Require("the signer's certificate is that of its issuer and number",
            signer->issuer == data->signer.issuer && signer->serial == data->signer.serial);
  }
  RequireWithin(encoded, data->signer.messageDigest);
  RequireWithin(encoded, data->signer.signature);
  RequireText(data->signer.programName);
  for (const trust::TimeStamp& stamp : data->signer.timeStamps) {
    RequireWithin(encoded, stamp.imprint);
    RequireTime(stamp.time);
  }
  if (const auto listed = trust::ParseIndirectData(data->content)) RequireWithin(encoded, listed->digest);
  for (const Bytes digest : trust::ParseTrustList(data->content)) RequireWithin(encoded, digest);
  for (const Bytes nested : data->signer.nested) {
    RequireWithin(encoded, nested);
    if (depth > 0) CheckSignature(nested, depth - 1);
  }
}

void CheckReader(Bytes bytes) {
  trust::DerReader reader(bytes);
  const char* next = bytes.data();
  while (const auto element = reader.Next()) {
    Require("elements follow each other", element->whole.data() == next);
    Require("an element ends with its content",
            element->content.data() + element->content.size() == next + element->whole.size());
    next += element->whole.size();
    RequireWithin(bytes, element->whole);
    RequireText(trust::StringText(*element));
    RequireTime(trust::TimeText(*element));
    trust::OidText(element->content);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // On the heap and of its exact size, so that a byte too many shows.
  const std::string file(reinterpret_cast<const char*>(data), size);
  const auto read = [&](std::uint64_t offset, void* bytes, std::size_t count) {
    if (offset > file.size() || count > file.size() - offset) return false;
    file.copy(static_cast<char*>(bytes), count, offset);
    return true;
  };
  if (const auto layout = trust::ReadImageLayout(size, read)) {
    const trust::FileRange table = layout->Certificates();
    const Bytes signature = trust::FirstSignature(Bytes(file).substr(table.begin, table.end - table.begin));
    RequireWithin(file, signature);
    CheckSignature(signature, 2);
  }
  CheckSignature(file, 2);
  CheckReader(file);
  trust::ParseTrustList(file);
  trust::ParseX509(file);
  trust::KeyUsagesAreWhole(file);
  return 0;
}
