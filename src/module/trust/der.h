/// @file
/// A reader of DER, the encoding of certificates and signatures. Needs nothing of the platform.
///
/// It stays within its bytes whatever they say: an element that is malformed, or longer than what is left, ends the
/// reading as the end does. Lengths are definite and of at most four bytes, tags of one byte; signatures of images and
/// catalogs have no others.
#pragma once

#include <optional>
#include <string>

#include "trust/bytes.h"

namespace trust {

enum DerTag : unsigned char {
  DerBoolean = 0x01,
  DerInteger = 0x02,
  DerBitString = 0x03,
  DerOctets = 0x04,
  DerOid = 0x06,
  DerUtcTime = 0x17,
  DerGeneralizedTime = 0x18,
  DerSequence = 0x30,
  DerSet = 0x31,
  /// [0], [1], [3] of the context: constructed.
  DerContext0 = 0xA0,
  DerContext1 = 0xA1,
  DerContext3 = 0xA3,
};

struct DerElement {
  unsigned char tag = 0;
  Bytes content;
  /// With tag and length.
  Bytes whole;
};

class DerReader {
 public:
  explicit DerReader(Bytes bytes) : m_rest(bytes) {}

  /// The next element; nothing at the end, and for anything malformed.
  std::optional<DerElement> Next();
  /// The next element if it has this tag; otherwise nothing, and the reader stays where it is.
  std::optional<DerElement> Next(unsigned char tag);
  /// The content of the next element if it has this tag.
  std::optional<Bytes> Content(unsigned char tag);

 private:
  Bytes m_rest;
};

/// "1.2.840.113549.1.7.2" of the content of an object identifier; empty for one that is malformed.
std::string OidText(Bytes content);

/// UTC, ISO 8601 ("2024-05-17T08:30:00Z"), of a UTCTime or GeneralizedTime in UTC; empty for anything else.
std::string TimeText(const DerElement& time);

/// UTF-8 of a string of any type that names use. What is not text, and control characters, become U+FFFD.
std::string StringText(const DerElement& string);

/// UTF-8 of characters of two bytes, the high byte first.
std::string Utf16BigEndianText(Bytes bytes);

}  // namespace trust
