#include <gmock/gmock.h>

#include <cstring>

#include "importhook.h"
#include "locales.h"
#include "logcapture.h"
#include "packagefiles.h"
#include "scratchmachine.h"
#include "temporaryfiles.h"

using namespace Orvane;
using test::LogLine;
using test::ScratchFile;
using test::ThisProgram;
using testing::ElementsAre;

namespace {

std::string Image(const std::wstring& name) { return test::ProgramFile(L"images\\" + name); }

/// The four texts of an image, read into a record that held others.
std::vector<std::string> Read(const std::string& path) {
  SysFileInfo info{"old description", "old company", "old file version", "old product version"};
  PackageFiles::GetDriveInfoFromSysFile(path, info);
  return {info.description, info.company, info.file_version, info.product_version};
}

TEST(VersionResource, GivesItsFourTexts) {
  EXPECT_THAT(Read(Image(L"full.sys")),
              ElementsAre("Example bus driver", "Example Systems", "6.2.9200.16384", "10.0.1.2"));
}

TEST(VersionResource, LogsItsBeginningAndItsEnd) {
  test::LogCapture log;
  Read(Image(L"full.sys"));
  Read("C:\\no such file.sys");
  const LogLine enter{4, "Enter DriverInfoImp::GetDriveInfoFromSysFile()"};
  const LogLine exit{4, "Exiting DriverInfoImp::GetDriveInfoFromSysFile()"};
  EXPECT_THAT(log.Take(), ElementsAre(enter, exit, enter, exit));
}

TEST(VersionResource, PrintsTheLargestWordsUnsigned) {
  EXPECT_THAT(Read(Image(L"maxwords.sys")),
              ElementsAre("Largest words", "Largest", "65535.65535.65535.65535", "65535.0.65535.0"));
}

TEST(VersionResource, MissingLeavesAllEmpty) {
  const auto nothing = ElementsAre("", "", "", "");
  EXPECT_THAT(Read(Image(L"noresource.sys")), nothing);
  EXPECT_THAT(Read("C:\\no such file.sys"), nothing);
  EXPECT_THAT(Read(test::SystemDirectory()), nothing) << "a folder";
  EXPECT_THAT(Read(""), nothing);
}

TEST(VersionResource, OfFixedBlockAloneGivesTheVersions) {
  EXPECT_THAT(Read(Image(L"fixedonly.sys")), ElementsAre("", "", "1.2.3.4", "5.6.7.8"));
}

TEST(VersionResource, WithoutAStringLeavesThatTextEmpty) {
  EXPECT_THAT(Read(Image(L"nocompany.sys")), ElementsAre("Driver of no one", "", "10.0.0.10", "10.0.100.0"));
}

TEST(VersionResource, OfTwoLanguagesSpeaksTheFirst) {
  EXPECT_THAT(Read(Image(L"twotranslations.sys")), ElementsAre("Erster Treiber", "Erste Firma", "3.1.0.0", "3.2.0.0"));
}

TEST(VersionResource, TextsAreInTheAnsiCodePage) {
  if (GetACP() != 1252) GTEST_SKIP() << "the expected bytes are those of code page 1252";
  EXPECT_THAT(Read(Image(L"codepage.sys")),
              ElementsAre("Treiber f\xFCr Ger\xE4te", "M\xFCller Ger\xE4te", "4.0.0.0", "4.0.0.1"));
}

TEST(VersionResource, IsAskedByLowerCaseHexadecimalWithLeadingZeros) {
  std::vector<std::string> asked;
  HOOK(query, ThisProgram(), VerQueryValueA, [&](const void* block, const char* path, void** value, UINT* length) {
    asked.emplace_back(path);
    return query.Real(block, path, value, length);
  });
  Read(Image(L"codepage.sys"));
  EXPECT_THAT(asked, ElementsAre("\\VarFileInfo\\Translation", "\\", "\\StringFileInfo\\000704e4\\FileDescription",
                                 "\\StringFileInfo\\000704e4\\CompanyName"));
}

TEST(VersionResource, PathDoesNotDependOnTheGlobalLocale) {
  const test::HostLocale<test::GroupedDigits> locale;
  EXPECT_THAT(Read(Image(L"full.sys")),
              ElementsAre("Example bus driver", "Example Systems", "6.2.9200.16384", "10.0.1.2"));
}

TEST(VersionResource, WithoutTranslationIsReadUnderTheLastOneSeen) {
  Read(Image(L"full.sys"));
  EXPECT_THAT(Read(Image(L"notranslation.sys")),
              ElementsAre("Driver without a translation", "Untranslated Systems", "2.0.0.1", "2.0.0.2"));
  Read(Image(L"noresource.sys"));
  EXPECT_THAT(Read(Image(L"notranslation.sys")),
              ElementsAre("Driver without a translation", "Untranslated Systems", "2.0.0.1", "2.0.0.2"));
  Read(Image(L"twotranslations.sys"));
  EXPECT_THAT(Read(Image(L"notranslation.sys")), ElementsAre("", "", "2.0.0.1", "2.0.0.2"))
      << "its table is not that of the last translation";
}

TEST(VersionResource, WithoutTranslationBeforeAnyOtherHasNoTexts) {
  std::vector<std::string> asked;
  HOOK(query, ThisProgram(), VerQueryValueA, [&](const void* block, const char* path, void** value, UINT* length) {
    asked.emplace_back(path);
    return query.Real(block, path, value, length);
  });
  EXPECT_THAT(Read(Image(L"notranslation.sys")), ElementsAre("", "", "2.0.0.1", "2.0.0.2"));
  EXPECT_THAT(asked, ElementsAre("\\VarFileInfo\\Translation", "\\"));
}

TEST(VersionResource, IsReadIntoABufferOfTheSizeThatTheSystemNames) {
  DWORD named = 0;
  std::vector<DWORD> given;
  HOOK(size, ThisProgram(), GetFileVersionInfoSizeA,
       [&](const char* path, DWORD* handle) { return named = size.Real(path, handle); });
  HOOK(read, ThisProgram(), GetFileVersionInfoA, [&](const char* path, DWORD handle, DWORD bytes, void* buffer) {
    given.push_back(bytes);
    return read.Real(path, handle, bytes, buffer);
  });
  Read(Image(L"full.sys"));
  EXPECT_GT(named, 0u);
  EXPECT_THAT(given, ElementsAre(named));
}

TEST(VersionResource, IsReadWithTheHandleThatTheSystemGaveAndWhateverReadingSays) {
  HOOK(size, ThisProgram(), GetFileVersionInfoSizeA, [&](const char* path, DWORD* handle) {
    const DWORD result = size.Real(path, handle);
    *handle = 77;
    return result;
  });
  HOOK(read, ThisProgram(), GetFileVersionInfoA, [&](const char* path, DWORD handle, DWORD bytes, void* buffer) {
    EXPECT_EQ(handle, 77u);
    read.Real(path, 0, bytes, buffer);
    return FALSE;
  });
  EXPECT_THAT(Read(Image(L"full.sys")),
              ElementsAre("Example bus driver", "Example Systems", "6.2.9200.16384", "10.0.1.2"));
}

TEST(VersionResource, ThatCannotBeReadHasNoTexts) {
  HOOK(read, ThisProgram(), GetFileVersionInfoA, [](const char*, DWORD, DWORD, void*) { return FALSE; });
  EXPECT_THAT(Read(Image(L"full.sys")), ElementsAre("", "", "", ""));
}

TEST(VersionResource, OfImpossibleSizeIsNotRead) {
  HOOK(size, ThisProgram(), GetFileVersionInfoSizeA, [](const char*, DWORD*) { return DWORD{0xFFFFFFF0}; });
  HOOK(read, ThisProgram(), GetFileVersionInfoA, [](const char*, DWORD, DWORD, void*) {
    ADD_FAILURE() << "read";
    return FALSE;
  });
  EXPECT_THAT(Read(Image(L"full.sys")), ElementsAre("", "", "", ""));
}

/// Answers one query of VerQueryValueA, `path`, as the test says; the others are the platform's.
class OneQuery {
 public:
  using Answer = std::function<BOOL(const char* block, void** value, UINT* length)>;

  OneQuery(std::string path, Answer answer)
      : m_hook(ThisProgram(), "VerQueryValueA",
               [this, wanted = std::move(path), answer = std::move(answer)](const void* block, const char* asked,
                                                                            void** value, UINT* length) {
                 return wanted == asked ? answer(static_cast<const char*>(block), value, length)
                                        : m_hook.Real(block, asked, value, length);
               }) {}

  BOOL Real(const char* block, const char* path, void** value, UINT* length) const {
    return m_hook.Real(block, path, value, length);
  }

 private:
  test::ImportHook<&VerQueryValueA> m_hook;
};

DWORD SizeOf(const std::string& path) {
  DWORD handle = 0;
  return GetFileVersionInfoSizeA(path.c_str(), &handle);
}

TEST(VersionResource, TranslationCountsWhateverResultAndLengthSay) {
  static WORD translation[] = {0x0409, 0x04B0};
  const OneQuery query("\\VarFileInfo\\Translation", [](const char*, void** value, UINT* length) {
    *value = translation;
    *length = 0;
    return FALSE;
  });
  EXPECT_THAT(Read(Image(L"notranslation.sys")),
              ElementsAre("Driver without a translation", "Untranslated Systems", "2.0.0.1", "2.0.0.2"));
}

TEST(VersionResource, TranslationCutOffByTheEndOfTheResourceIsNone) {
  const DWORD size = SizeOf(Image(L"full.sys"));
  const OneQuery query("\\VarFileInfo\\Translation", [size](const char* block, void** value, UINT* length) {
    *value = const_cast<char*>(block + size - 3);
    *length = 4;
    return TRUE;
  });
  EXPECT_THAT(Read(Image(L"full.sys")), ElementsAre("", "", "6.2.9200.16384", "10.0.1.2"));
}

TEST(VersionResource, OnlyTheLengthDecidesAboutTheFixedBlock) {
  UINT told = 1;
  const OneQuery query("\\", [&](const char* block, void** value, UINT* length) {
    const BOOL result = query.Real(block, "\\", value, length);
    *length = told;
    return result;
  });
  EXPECT_THAT(Read(Image(L"full.sys")),
              ElementsAre("Example bus driver", "Example Systems", "6.2.9200.16384", "10.0.1.2"));
  told = 0;
  EXPECT_THAT(Read(Image(L"full.sys")), ElementsAre("Example bus driver", "Example Systems", "", ""));
}

TEST(VersionResource, FailedQueriesHaveNoLength) {
  HOOK(query, ThisProgram(), VerQueryValueA, [&](const void* block, const char* path, void** value, UINT* length) {
    query.Real(block, path, value, length);
    return FALSE;
  });
  EXPECT_THAT(Read(Image(L"full.sys")), ElementsAre("", "", "", ""));
}

TEST(VersionResource, FixedBlockEndsWithTheResource) {
  const DWORD size = SizeOf(Image(L"full.sys"));
  const OneQuery query("\\", [size](const char* block, void** value, UINT* length) {
    char* const rest = const_cast<char*>(block + size - 16);
    const DWORD words[] = {0xFEEF04BD, 0x00010000, 0x00070008, 0x0009000A};
    std::memcpy(rest, words, sizeof(words));
    *value = rest;
    *length = sizeof(VS_FIXEDFILEINFO);
    return TRUE;
  });
  EXPECT_THAT(Read(Image(L"full.sys")), ElementsAre("Example bus driver", "Example Systems", "7.8.9.10", "0.0.0.0"));
}

TEST(VersionResource, TextEndsWithTheResource) {
  const DWORD size = SizeOf(Image(L"full.sys"));
  const OneQuery query("\\StringFileInfo\\040904b0\\CompanyName",
                       [size](const char* block, void** value, UINT* length) {
                         char* const rest = const_cast<char*>(block + size - 4);
                         std::memcpy(rest, "Last", 4);
                         *value = rest;
                         *length = 5;
                         return TRUE;
                       });
  EXPECT_THAT(Read(Image(L"full.sys")), ElementsAre("Example bus driver", "Last", "6.2.9200.16384", "10.0.1.2"));
}

TEST(VersionResource, TextWithoutLengthIsNone) {
  const OneQuery query(
      "\\StringFileInfo\\040904b0\\FileDescription", [&](const char* block, void** value, UINT* length) {
        const BOOL result = query.Real(block, "\\StringFileInfo\\040904b0\\FileDescription", value, length);
        *length = 0;
        return result;
      });
  EXPECT_THAT(Read(Image(L"full.sys")), ElementsAre("", "Example Systems", "6.2.9200.16384", "10.0.1.2"));
}

TEST(VersionResource, MayBeLarge) {
  const ScratchFile image(test::TemporaryPath("large.sys"), L"images\\noresource.sys");
  test::VersionSettings settings;
  settings.file[0] = 7;
  settings.texts = {{L"CompanyName", L"Example Systems"}};
  std::vector<char> bytes = test::VersionResourceBytes(settings);
  bytes.resize(600'000);
  test::SetVersionResource(image.Path(), bytes);
  EXPECT_THAT(Read(image.Path()), ElementsAre("", "Example Systems", "7.0.0.0", "0.0.0.0"));
}

// The lengths in a resource lead the platform; wherever they point, no read and no write leaves the buffer, or the
// process would not survive this.
TEST(VersionResource, MayHaveAnyLengthInIt) {
  test::VersionSettings settings;
  settings.texts = {{L"CompanyName", L"Example Systems"}, {L"FileDescription", L"Example driver"}};
  const std::vector<char> good = test::VersionResourceBytes(settings);
  std::vector<char> bytes;
  HOOK(size, ThisProgram(), GetFileVersionInfoSizeA,
       [&](const char*, DWORD*) { return static_cast<DWORD>(2 * bytes.size() + 4); });
  HOOK(read, ThisProgram(), GetFileVersionInfoA, [&](const char*, DWORD, DWORD, void* buffer) {
    std::memcpy(buffer, bytes.data(), bytes.size());
    return TRUE;
  });
  for (std::size_t offset = 0; offset + 1 < good.size(); offset += 2) {
    for (const int word : {0, 1, 5, 0x600, 0x1000, 0x7FFF, 0x8000, 0xFFFE, 0xFFFF}) {
      bytes = good;
      bytes[offset] = static_cast<char>(word);
      bytes[offset + 1] = static_cast<char>(word >> 8);
      const std::vector<std::string> texts = Read("x.sys");
      EXPECT_LT(texts[0].size() + texts[1].size(), 1'000'000u);
    }
  }
}

TEST(SplitAtSemicolon, SplitsAtTheFirst) {
  const auto split = [](const std::string& text) {
    std::string before = "old";
    std::string after = "old";
    PackageFiles::SplitAtSemicolon(text, before, after);
    return before + "|" + after;
  };
  EXPECT_EQ(split("1.2;3.4"), "1.2|3.4");
  EXPECT_EQ(split("a;b;c"), "a|b;c");
  EXPECT_EQ(split(";b"), "|b");
  EXPECT_EQ(split("a;"), "a|");
  EXPECT_EQ(split("whole"), "whole|whole");
  EXPECT_EQ(split(""), "|");
}

TEST(SplitAtSemicolon, MaySplitATextIntoItself) {
  std::string text = "a;b";
  std::string after;
  PackageFiles::SplitAtSemicolon(text, text, after);
  EXPECT_EQ(text + "|" + after, "a|b");
  std::string whole = "a;b";
  std::string before;
  PackageFiles::SplitAtSemicolon(whole, before, whole);
  EXPECT_EQ(before + "|" + whole, "a|b");
}

}  // namespace
