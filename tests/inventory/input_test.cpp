#include "inventory/input.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>

#include "importhook.h"
#include "platform/encoding.h"
#include "random.h"
#include "temporaryfiles.h"

using namespace inventory;

namespace {

/// A file while it lives.
class InputFileTest : public testing::Test {
 protected:
  std::wstring Path() const { return m_folder.Path(L"\u0436.json"); }
  std::string Utf8Path() const { return Orvane::Utf8FromWide(Path()); }

  void Write(const std::string& bytes) const { test::WriteText(Path(), bytes); }

  /// What is read of a file that holds `bytes`.
  std::string Read(const std::string& bytes) const {
    Write(bytes);
    InputFile file(Utf8Path());
    return Text(file);
  }

  static std::string Text(std::streambuf& file) { return {std::istreambuf_iterator<char>(&file), {}}; }

  /// What is wrong with the file at `path`.
  static std::string Problem(const std::wstring& path) {
    try {
      InputFile file(Orvane::Utf8FromWide(path));
      Text(file);
    } catch (const InputProblem& problem) {
      return problem.what();
    }
    return "";
  }

  const test::TemporaryFolder m_folder;
};

std::string LittleEndian(const std::wstring& text) {
  return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)};
}

std::string BigEndian(const std::wstring& text) {
  std::string bytes = LittleEndian(text);
  for (std::size_t i = 0; i < bytes.size(); i += 2) std::swap(bytes[i], bytes[i + 1]);
  return bytes;
}

TEST_F(InputFileTest, PassesUtf8OnAsItIs) {
  std::string content(3'000'000, 'x');
  content += std::string("\0\r\n\x1A\xFF\x80\xC3\xA9", 8);
  EXPECT_TRUE(Read(content) == content);
  EXPECT_EQ(Read(""), "");
}

TEST_F(InputFileTest, DropsTheMarkAtTheBeginningAlone) {
  EXPECT_EQ(Read("\xEF\xBB\xBFtext\xEF\xBB\xBF"), "text\xEF\xBB\xBF");
  EXPECT_EQ(Read("\xEF\xBB\xBF"), "");
  EXPECT_EQ(Read("\xEF\xBB"), "\xEF\xBB");
  EXPECT_EQ(Read("\xFF\xFE"), "");
  EXPECT_EQ(Read("\xFE\xFF"), "");
}

TEST_F(InputFileTest, TurnsUtf16IntoUtf8WhereverAChunkEnds) {
  for (const std::wstring& shift : {std::wstring(), std::wstring(L"a"), std::wstring(L"ab")}) {
    std::wstring wide = shift;
    std::string utf8(shift.begin(), shift.end());
    for (int i = 0; i < 50'000; ++i) {
      wide += L"a\u0436\u65E5\U0001F600";
      utf8 += "a\u0436\u65E5\U0001F600";
    }
    EXPECT_TRUE(Read("\xFF\xFE" + LittleEndian(wide)) == utf8) << shift.size();
    EXPECT_TRUE(Read("\xFE\xFF" + BigEndian(wide)) == utf8) << shift.size();
  }
}

TEST_F(InputFileTest, ReplacesHalfCharactersOfUtf16) {
  const std::wstring high(1, static_cast<wchar_t>(0xD83D));
  const std::wstring low(1, static_cast<wchar_t>(0xDE00));
  EXPECT_EQ(Read("\xFF\xFE" + LittleEndian(L"a" + low + L"b" + high + L"c" + high)),
            "a\uFFFD"
            "b\uFFFD"
            "c\uFFFD");
  EXPECT_EQ(Read("\xFF\xFE" + LittleEndian(L"ab") + "c"), "ab") << "half a code unit";
}

TEST_F(InputFileTest, IsReadAgainFromItsBeginning) {
  Write("\xFF\xFE" + LittleEndian(L"one \u0436"));
  InputFile file(Utf8Path());
  EXPECT_EQ(file.sbumpc(), 'o');
  EXPECT_EQ(file.pubseekpos(0, std::ios_base::in), std::streampos(0));
  EXPECT_EQ(Text(file), "one \u0436");
  EXPECT_EQ(file.pubseekpos(0, std::ios_base::in), std::streampos(0));
  EXPECT_EQ(Text(file), "one \u0436");
  EXPECT_EQ(file.pubseekpos(1, std::ios_base::in), std::streampos(-1));
}

TEST_F(InputFileTest, MayBeOpenForWritingElsewhere) {
  Write("text");
  const Orvane::FileHandle writer(
      CreateFileW(Path().c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
  ASSERT_TRUE(writer);
  InputFile file(Orvane::Utf8FromWide(Path()));
  EXPECT_EQ(Text(file), "text");
}

TEST_F(InputFileTest, SaysWhyItCannotBeOpened) {
  EXPECT_EQ(Problem(m_folder.Path(L"none")), "cannot be read: there is no such file");
  EXPECT_EQ(Problem(m_folder.Path(L"none\\file")), "cannot be read: there is no such file");
  EXPECT_EQ(Problem(m_folder.Path(L".")), "cannot be read: it is a folder");
  EXPECT_EQ(Problem(m_folder.Path(L"")), "cannot be read: it is a folder");
  Write("text");
  const Orvane::FileHandle writer(CreateFileW(Path().c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
  const std::string sentence = Orvane::ErrorText(ERROR_SHARING_VIOLATION);
  ASSERT_EQ(sentence.back(), '.');
  EXPECT_EQ(Problem(Path()), "cannot be read: " + sentence.substr(0, sentence.size() - 1));
  HOOK(create, test::ThisProgram(), CreateFileW,
       [](const wchar_t*, DWORD, DWORD, SECURITY_ATTRIBUTES*, DWORD, DWORD, HANDLE) -> HANDLE {
         SetLastError(ERROR_ACCESS_DENIED);
         return INVALID_HANDLE_VALUE;
       });
  EXPECT_EQ(Problem(Path()), "cannot be read: access is denied");
}

TEST_F(InputFileTest, SaysWhyItCannotBeReadOn) {
  Write("text");
  int calls = 0;
  HOOK(read, test::ThisProgram(), ReadFile,
       [&](HANDLE file, void* bytes, DWORD size, DWORD* count, OVERLAPPED* overlapped) -> BOOL {
         if (++calls == 1) return read.Real(file, bytes, size, count, overlapped);
         SetLastError(ERROR_ACCESS_DENIED);
         return FALSE;
       });
  EXPECT_EQ(Problem(Path()), "cannot be read: access is denied");
  EXPECT_EQ(calls, 2);
}

TEST_F(InputFileTest, ReadsWhatComesInPieces) {
  Write("\xFF\xFE" + LittleEndian(L"a\U0001F600"));
  HOOK(read, test::ThisProgram(), ReadFile, [&](HANDLE file, void* bytes, DWORD, DWORD* count, OVERLAPPED* overlapped) {
    return read.Real(file, bytes, 1, count, overlapped);
  });
  InputFile file(Utf8Path());
  EXPECT_EQ(Text(file), "a\U0001F600");
}

TEST_F(InputFileTest, IsRefusedUnreadWhenItIsLongerThanOneGibibyte) {
  Write("");
  LARGE_INTEGER size;
  size.QuadPart = LongestInput + 1;
  HOOK(getSize, test::ThisProgram(), GetFileSizeEx, [&size](HANDLE, LARGE_INTEGER* told) -> BOOL {
    *told = size;
    return TRUE;
  });
  EXPECT_EQ(Problem(Path()), "is longer than 1 GiB");
  size.QuadPart = LongestInput;
  EXPECT_EQ(Problem(Path()), "");
}

TEST_F(InputFileTest, IsRefusedWhenItGrowsBeyondOneGibibyte) {
  Write("");
  std::uint64_t given = 0;
  HOOK(read, test::ThisProgram(), ReadFile, [&](HANDLE, void*, DWORD size, DWORD* count, OVERLAPPED*) -> BOOL {
    *count = static_cast<DWORD>(std::min<std::uint64_t>(size, 2 * LongestInput - given));
    given += *count;
    return TRUE;
  });
  InputFile file(Utf8Path());
  std::string part(1 << 20, '\0');
  EXPECT_THROW(
      {
        while (file.sgetn(part.data(), static_cast<std::streamsize>(part.size())) > 0) continue;
      },
      InputProblem);
  EXPECT_GT(given, LongestInput);
  EXPECT_LE(given, LongestInput + part.size());
}

TEST_F(InputFileTest, MakesUtf8OfAnyUtf16) {
  for (std::uint64_t seed = 1; seed <= 300; ++seed) {
    test::Random random(seed);
    std::string bytes(random.Size(3000), '\0');
    // Many code units are halves of characters.
    for (char& byte : bytes) byte = random.OneIn(3) ? static_cast<char>(0xD8 + random.Below(8)) : random.Byte();
    const std::string text = Read((random.OneIn(2) ? "\xFF\xFE" : "\xFE\xFF") + bytes);
    ASSERT_TRUE(Orvane::Utf8FromWide(Orvane::WideFromUtf8(text)) == text) << "seed " << seed;
    ASSERT_GE(text.size(), bytes.size() / 2) << "seed " << seed;
  }
}

}  // namespace
