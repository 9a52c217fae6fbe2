/// @file
/// A reader of DER, the encoding of certificates and signatures. Uses no platform API.
///
/// It never reads outside its bytes: an element that is malformed or too long ends the reading like the end of the
/// bytes. Only definite lengths of at most four bytes and tags of one byte are supported; signatures of images and
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
  /// The context-specific tags [0], [1], [3], constructed.
  DerContext0 = 0xA0,
  DerContext1 = 0xA1,
  DerContext3 = 0xA3,
};

struct DerElement {
  unsigned char tag = 0;
  Bytes content;
  /// Including tag and length.
  Bytes whole;
};

class DerReader {
 public:
  explicit DerReader(Bytes bytes) : m_rest(bytes) {}

  /// The next element; nullopt at the end and for a malformed element.
  std::optional<DerElement> Next();
  /// The next element if it has this tag; otherwise nullopt, and the reader stays where it is.
  std::optional<DerElement> Next(unsigned char tag);
  /// The content of the next element if it has this tag.
  std::optional<Bytes> Content(unsigned char tag);

 private:
  Bytes m_rest;
};

/// The text of an object identifier from its content, such as "1.2.840.113549.1.7.2"; empty if it is malformed.
std::string OidText(Bytes content);

/// The time in a UTCTime or GeneralizedTime in UTC, as ISO 8601 ("2024-05-17T08:30:00Z"); empty for anything else.
std::string TimeText(const DerElement& time);

/// A string of any type that names use, in UTF-8. Invalid text and control characters become U+FFFD.
std::string StringText(const DerElement& string);

/// Two-byte characters, the high byte first, in UTF-8.
std::string Utf16BigEndianText(Bytes bytes);

}  // namespace trust
