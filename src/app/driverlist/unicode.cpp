#include "unicode.h"

#include <windows.h>

namespace driverlist {
namespace {

std::wstring Widen(UINT codePage, std::string_view text) {
  const int size = static_cast<int>(text.size());
  std::wstring wide(static_cast<std::size_t>(MultiByteToWideChar(codePage, 0, text.data(), size, nullptr, 0)), L'\0');
  MultiByteToWideChar(codePage, 0, text.data(), size, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

bool StartsCodePoint(char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }

}  // namespace

std::string Utf8FromAnsi(std::string_view ansi) { return Utf8FromWide(Widen(CP_ACP, ansi)); }

std::wstring WideFromUtf8(std::string_view utf8) { return Widen(CP_UTF8, utf8); }

std::string Utf8FromWide(std::wstring_view wide) {
  const int size = static_cast<int>(wide.size());
  std::string utf8(
      static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, nullptr, 0, nullptr, nullptr)), '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, utf8.data(), static_cast<int>(utf8.size()), nullptr, nullptr);
  return utf8;
}

std::size_t Columns(std::string_view utf8) {
  std::size_t columns = 0;
  for (const char c : utf8) columns += StartsCodePoint(c) ? 1 : 0;
  return columns;
}

std::size_t NextCodePoint(std::string_view utf8, std::size_t at) {
  do {
    ++at;
  } while (at < utf8.size() && !StartsCodePoint(utf8[at]));
  return at;
}

std::string Cut(std::string_view utf8, std::size_t columns) {
  if (columns == 0) return std::string();
  if (Columns(utf8) <= columns) return std::string(utf8);
  std::size_t bytes = 0;
  for (std::size_t started = 0; bytes < utf8.size(); ++bytes) {
    if (StartsCodePoint(utf8[bytes]) && ++started == columns) break;
  }
  return std::string(utf8.substr(0, bytes)) + "\u2026";
}

std::string CutFront(std::string_view utf8, std::size_t columns) {
  if (columns == 0) return std::string();
  const std::size_t all = Columns(utf8);
  if (all <= columns) return std::string(utf8);
  std::size_t start = 0;
  for (std::size_t passed = 0; start < utf8.size(); ++start) {
    if (StartsCodePoint(utf8[start]) && ++passed == all - columns + 2) break;
  }
  return "\u2026" + std::string(utf8.substr(start));
}

std::string LowerCase(std::string_view utf8) {
  if (utf8.empty()) return std::string();
  std::wstring wide = WideFromUtf8(utf8);
  const int size = static_cast<int>(wide.size());
  // Without linguistic rules, a text keeps its length.
  LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_LOWERCASE, wide.data(), size, wide.data(), size, nullptr, nullptr, 0);
  return Utf8FromWide(wide);
}

std::string Printable(std::string utf8) {
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto byte = static_cast<unsigned char>(utf8[i]);
    // A C1 control is two bytes.
    const bool c1 = byte == 0xC2 && i + 1 < utf8.size() && static_cast<unsigned char>(utf8[i + 1]) < 0xA0;
    if (c1) utf8.erase(i, 1);
    if (c1 || byte < 0x20 || byte == 0x7F) utf8[i] = '?';
  }
  return utf8;
}

std::string ErrorText(unsigned long code) {
  wchar_t text[512];
  DWORD length =
      FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0, text, 512, nullptr);
  while (length > 0 && (text[length - 1] == L'\r' || text[length - 1] == L'\n' || text[length - 1] == L' ')) --length;
  if (length == 0) return "error " + std::to_string(code);
  return Utf8FromWide(std::wstring_view(text, length));
}

}  // namespace driverlist
