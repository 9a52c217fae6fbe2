/// @file
/// The doors between encodings. Beyond them every text is UTF-8. The wide Windows calls take UTF-16; the narrow calls
/// of the listing library and of the device inventory take the ANSI code page.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace Orvane {

// Without flags for strict checking, a conversion fails only for lack of room, and each of these functions first asks
// how much room it needs.

/// Bytes that are not text in `codePage` become U+FFFD or "?".
inline std::wstring WideFrom(UINT codePage, std::string_view text) {
  const int size = static_cast<int>(text.size());
  std::wstring wide(static_cast<std::size_t>(MultiByteToWideChar(codePage, 0, text.data(), size, nullptr, 0)), L'\0');
  MultiByteToWideChar(codePage, 0, text.data(), size, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

inline std::wstring WideFromUtf8(std::string_view utf8) { return WideFrom(CP_UTF8, utf8); }

/// Half a surrogate pair becomes U+FFFD.
inline std::string Utf8FromWide(std::wstring_view wide) {
  const int size = static_cast<int>(wide.size());
  std::string utf8(
      static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, nullptr, 0, nullptr, nullptr)), '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, utf8.data(), static_cast<int>(utf8.size()), nullptr, nullptr);
  return utf8;
}

/// The encoding of the narrow calls: the code page of the process, or UTF-8 in a module that replaces these calls.
#ifdef ORVANE_LINKED_IN
constexpr UINT NarrowCodePage = CP_UTF8;
#else
constexpr UINT NarrowCodePage = CP_ACP;
#endif

/// If the process's code page is UTF-8 (its manifest may say so), only bytes that are not UTF-8 change.
inline std::string Utf8FromAnsi(std::string_view ansi) { return Utf8FromWide(WideFrom(NarrowCodePage, ansi)); }

/// For the narrow calls of other modules. Characters that the code page does not have become "?".
inline std::string AnsiFromUtf8(std::string_view utf8) {
  const std::wstring wide = WideFromUtf8(utf8);
  const int size = static_cast<int>(wide.size());
  std::string ansi(
      static_cast<std::size_t>(WideCharToMultiByte(NarrowCodePage, 0, wide.data(), size, nullptr, 0, nullptr, nullptr)),
      '\0');
  WideCharToMultiByte(NarrowCodePage, 0, wide.data(), size, ansi.data(), static_cast<int>(ansi.size()), nullptr,
                      nullptr);
  return ansi;
}

/// `utf8` in lower case, letter by letter, the same in every locale. Windows compares the names of files, services and
/// devices in this way.
inline std::string LowerCase(std::string_view utf8) {
  if (utf8.empty()) return std::string();
  std::wstring wide = WideFromUtf8(utf8);
  const int size = static_cast<int>(wide.size());
  // Without linguistic rules, a text keeps its length.
  LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_LOWERCASE, wide.data(), size, wide.data(), size, nullptr, nullptr, 0);
  return Utf8FromWide(wide);
}

/// The system's sentence for a Windows error code, without the line break at its end.
inline std::string ErrorText(unsigned long code) {
  wchar_t text[512];
  DWORD length =
      FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0, text, 512, nullptr);
  while (length > 0 && (text[length - 1] == L'\r' || text[length - 1] == L'\n' || text[length - 1] == L' ')) --length;
  if (length == 0) return "error " + std::to_string(code);
  return Utf8FromWide(std::wstring_view(text, length));
}

}  // namespace Orvane
