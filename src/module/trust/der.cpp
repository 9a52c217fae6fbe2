#include "trust/der.h"

#include <algorithm>
#include <cstdint>

namespace trust {
namespace {

unsigned ByteAt(Bytes bytes, std::size_t index) { return static_cast<unsigned char>(bytes[index]); }

/// The length of an element's content, and how many bytes its tag and length take.
struct Extent {
  std::size_t header = 2;
  std::size_t content = 0;
};

std::optional<Extent> ReadExtent(Bytes bytes) {
  constexpr unsigned highTagNumber = 0x1F;
  constexpr unsigned longForm = 0x80;
  if (bytes.size() < 2 || (ByteAt(bytes, 0) & highTagNumber) == highTagNumber) return std::nullopt;
  Extent extent;
  extent.content = ByteAt(bytes, 1);
  if ((extent.content & longForm) != 0) {
    const std::size_t count = extent.content & ~std::size_t{longForm};
    if (count == 0 || count > 4 || bytes.size() < 2 + count) return std::nullopt;
    extent.content = 0;
    for (std::size_t i = 0; i < count; ++i) extent.content = extent.content << 8 | ByteAt(bytes, 2 + i);
    extent.header = 2 + count;
  }
  if (extent.content > bytes.size() - extent.header) return std::nullopt;
  return extent;
}

constexpr char32_t Replacement = 0xFFFD;

void AppendUtf8(std::string& text, char32_t character) {
  const bool isControl = character < 0x20 || (character >= 0x7F && character < 0xA0);
  const bool isSurrogate = character >= 0xD800 && character < 0xE000;
  if (isControl || isSurrogate || character > 0x10FFFF) character = Replacement;
  const auto append = [&](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
  const auto appendTail = [&](int shift) { append(0x80 | (character >> shift & 0x3F)); };
  if (character < 0x80) {
    append(character);
  } else if (character < 0x800) {
    append(0xC0 | character >> 6);
    appendTail(0);
  } else if (character < 0x10000) {
    append(0xE0 | character >> 12);
    appendTail(6);
    appendTail(0);
  } else {
    append(0xF0 | character >> 18);
    appendTail(12);
    appendTail(6);
    appendTail(0);
  }
}

/// Takes the first character off `bytes`; U+FFFD for a byte that begins no character.
char32_t TakeUtf8(Bytes& bytes) {
  const unsigned first = ByteAt(bytes, 0);
  std::size_t tail = 0;
  char32_t character = first;
  char32_t least = 0;
  if (first >= 0xC0 && first < 0xE0) {
    tail = 1, character = first & 0x1F, least = 0x80;
  } else if (first >= 0xE0 && first < 0xF0) {
    tail = 2, character = first & 0x0F, least = 0x800;
  } else if (first >= 0xF0 && first < 0xF8) {
    tail = 3, character = first & 0x07, least = 0x10000;
  } else if (first >= 0x80) {
    character = Replacement;
  }
  bool sound = bytes.size() > tail;
  for (std::size_t i = 1; sound && i <= tail; ++i) {
    sound = (ByteAt(bytes, i) & 0xC0) == 0x80;
    character = character << 6 | (ByteAt(bytes, i) & 0x3F);
  }
  sound = sound && character >= least;
  bytes.remove_prefix(sound ? 1 + tail : 1);
  return sound ? character : Replacement;
}

std::string Utf8Text(Bytes bytes) {
  std::string text;
  while (!bytes.empty()) AppendUtf8(text, TakeUtf8(bytes));
  return text;
}

std::string Latin1Text(Bytes bytes) {
  std::string text;
  for (const char c : bytes) AppendUtf8(text, static_cast<unsigned char>(c));
  return text;
}

std::string Utf32BigEndianText(Bytes bytes) {
  std::string text;
  for (std::size_t i = 0; i + 4 <= bytes.size(); i += 4) {
    AppendUtf8(text,
               ByteAt(bytes, i) << 24 | ByteAt(bytes, i + 1) << 16 | ByteAt(bytes, i + 2) << 8 | ByteAt(bytes, i + 3));
  }
  return text;
}

int TwoDigits(Bytes digits, std::size_t index) { return (digits[index] - '0') * 10 + (digits[index + 1] - '0'); }

}  // namespace

std::optional<DerElement> DerReader::Next() {
  const auto extent = ReadExtent(m_rest);
  if (!extent) return std::nullopt;
  DerElement element;
  element.tag = static_cast<unsigned char>(m_rest[0]);
  element.content = m_rest.substr(extent->header, extent->content);
  element.whole = m_rest.substr(0, extent->header + extent->content);
  m_rest.remove_prefix(element.whole.size());
  return element;
}

std::optional<DerElement> DerReader::Next(unsigned char tag) {
  if (m_rest.empty() || static_cast<unsigned char>(m_rest[0]) != tag) return std::nullopt;
  return Next();
}

std::optional<Bytes> DerReader::Content(unsigned char tag) {
  const auto element = Next(tag);
  if (!element) return std::nullopt;
  return element->content;
}

std::string OidText(Bytes content) {
  std::string text;
  std::uint64_t number = 0;
  bool ended = false;
  constexpr std::uint64_t most = std::uint64_t{1} << 56;
  for (std::size_t i = 0; i < content.size(); ++i) {
    number = number << 7 | (ByteAt(content, i) & 0x7F);
    if (number >= most) return {};
    ended = (ByteAt(content, i) & 0x80) == 0;
    if (!ended) continue;
    if (text.empty()) {
      // The first two components are in one number.
      const std::uint64_t first = std::min<std::uint64_t>(number / 40, 2);
      text = std::to_string(first) + "." + std::to_string(number - 40 * first);
    } else {
      text += "." + std::to_string(number);
    }
    number = 0;
  }
  return ended ? text : std::string();
}

std::string TimeText(const DerElement& time) {
  std::string digits(time.content);
  if (time.tag == DerUtcTime && digits.size() == 13) {
    digits.insert(0, digits[0] >= '5' ? "19" : "20");
  } else if (time.tag != DerGeneralizedTime || digits.size() < 15) {
    return {};
  }
  // A fraction of a second may follow.
  if (digits.back() != 'Z') return {};
  digits.resize(14);
  if (!std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; })) return {};
  const int month = TwoDigits(digits, 4);
  const int day = TwoDigits(digits, 6);
  if (month < 1 || month > 12 || day < 1 || day > 31 || TwoDigits(digits, 8) > 23 || TwoDigits(digits, 10) > 59 ||
      TwoDigits(digits, 12) > 60) {
    return {};
  }
  return digits.substr(0, 4) + "-" + digits.substr(4, 2) + "-" + digits.substr(6, 2) + "T" + digits.substr(8, 2) + ":" +
         digits.substr(10, 2) + ":" + digits.substr(12, 2) + "Z";
}

std::string Utf16BigEndianText(Bytes bytes) {
  std::string text;
  for (std::size_t i = 0; i + 2 <= bytes.size(); i += 2) {
    char32_t character = ByteAt(bytes, i) << 8 | ByteAt(bytes, i + 1);
    if (character >= 0xD800 && character < 0xDC00 && i + 4 <= bytes.size()) {
      const char32_t low = ByteAt(bytes, i + 2) << 8 | ByteAt(bytes, i + 3);
      if (low >= 0xDC00 && low < 0xE000) {
        character = 0x10000 + ((character - 0xD800) << 10) + (low - 0xDC00);
        i += 2;
      }
    }
    AppendUtf8(text, character);
  }
  return text;
}

std::string StringText(const DerElement& string) {
  constexpr unsigned char utf8String = 0x0C;
  constexpr unsigned char universalString = 0x1C;
  constexpr unsigned char bmpString = 0x1E;
  switch (string.tag) {
    case utf8String:
      return Utf8Text(string.content);
    case universalString:
      return Utf32BigEndianText(string.content);
    case bmpString:
      return Utf16BigEndianText(string.content);
    default:
      // The other types hold ASCII, or what old programs took for Latin-1.
      return Latin1Text(string.content);
  }
}

}  // namespace trust
