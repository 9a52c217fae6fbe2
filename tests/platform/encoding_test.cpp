#include "platform/encoding.h"

#include <gtest/gtest.h>

#include <cwchar>

#include "importhook.h"

using Orvane::ErrorText;
using test::ThisProgram;

namespace {

/// The sentence for an error that the system describes as `text`.
std::string Sentence(const wchar_t* text) {
  HOOK(format, ThisProgram(), FormatMessageW,
       [text](DWORD, const void*, DWORD, DWORD, wchar_t* buffer, DWORD size, va_list*) {
         std::wcsncpy(buffer, text, size);
         return static_cast<DWORD>(std::wcslen(text));
       });
  return ErrorText(4711);
}

TEST(ErrorText, EndsBeforeBlanksAndLineBreaks) {
  EXPECT_EQ(Sentence(L"Access is denied.\r\n"), "Access is denied.");
  EXPECT_EQ(Sentence(L"The library is damaged. \r\n"), "The library is damaged.");
  EXPECT_EQ(Sentence(L"Se\u00f1al. \r\n \r\n"), "Se\u00f1al.");
}

TEST(ErrorText, NamesACodeThatTheSystemDoesNotKnow) {
  EXPECT_EQ(Sentence(L""), "error 4711");
  EXPECT_EQ(Sentence(L"\r\n"), "error 4711");
}

}  // namespace
