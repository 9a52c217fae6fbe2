// What the version resource of an image calls it.
#include "trust/imagenames.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <cstring>

#include "platform/encoding.h"
#include "scratchmachine.h"

using namespace trust;

namespace {

TEST(FileVersions, AreReadFromTheBeginningOfAText) {
  const auto text = [](std::string_view version) {
    const auto parsed = ParseFileVersion(version);
    return parsed ? FileVersionText(*parsed) : "none";
  };
  EXPECT_EQ(text("1.2.3.4"), "1.2.3.4");
  EXPECT_EQ(text("65535.65535.65535.65535"), "65535.65535.65535.65535");
  EXPECT_EQ(text("6.1.7600.16385 (win7_rtm.090713-1255)"), "6.1.7600.16385");
  EXPECT_EQ(text("1, 0, 0, 7"), "1.0.0.7");
  EXPECT_EQ(text("1.24 built by: WinDDK"), "1.24.0.0");
  EXPECT_EQ(text("7"), "7.0.0.0");
  EXPECT_EQ(text("1.03.0.7"), "1.3.0.7");
  EXPECT_EQ(text("1."), "1.0.0.0");
  EXPECT_EQ(text("1.2.3.4.5"), "1.2.3.4");
  EXPECT_EQ(text("70000.1"), "none");
  EXPECT_EQ(text("v1.2"), "none");
  EXPECT_EQ(text(""), "none");
}

TEST(FileVersions, CompareAsNumbers) { EXPECT_LT(*ParseFileVersion("2.9.0.0"), *ParseFileVersion("2.10.0.0")); }

std::string ImagePath(const std::wstring& image) {
  return Orvane::Utf8FromWide(Orvane::WideFrom(CP_ACP, test::ProgramFile(image)));
}

/// What the platform says of the same file.
ImageNames NamesByThePlatform(const std::string& path) {
  const std::wstring wide = Orvane::WideFromUtf8(path);
  std::vector<char> resource(GetFileVersionInfoSizeW(wide.c_str(), nullptr) + (1 << 16));
  GetFileVersionInfoW(wide.c_str(), 0, static_cast<DWORD>(resource.size() - (1 << 16)), resource.data());
  void* value = nullptr;
  UINT size = 0;
  ImageNames names;
  if (VerQueryValueW(resource.data(), L"\\", &value, &size)) {
    VS_FIXEDFILEINFO fixed{};
    std::memcpy(&fixed, value, sizeof(fixed));
    names.version = FileVersion{fixed.dwFileVersionMS} << 32 | fixed.dwFileVersionLS;
  }
  if (!VerQueryValueW(resource.data(), L"\\VarFileInfo\\Translation", &value, &size)) return names;
  wchar_t table[64];
  const auto* const translation = static_cast<const WORD*>(value);
  swprintf(table, 64, L"\\StringFileInfo\\%04x%04x\\", translation[0], translation[1]);
  const auto text = [&](const wchar_t* key) {
    const bool isThere =
        VerQueryValueW(resource.data(), (table + std::wstring(key)).c_str(), &value, &size) && size > 0;
    return isThere ? Orvane::Utf8FromWide(static_cast<const wchar_t*>(value)) : std::string();
  };
  names.originalName = text(L"OriginalFilename");
  names.internalName = text(L"InternalName");
  names.productName = text(L"ProductName");
  names.description = text(L"FileDescription");
  return names;
}

std::string Told(const ImageNames& names) {
  return names.originalName + "|" + names.internalName + "|" + names.productName + "|" + names.description + "|" +
         (names.version ? FileVersionText(*names.version) : "none");
}

TEST(ImageNames, AreThoseThatThePlatformReads) {
  for (const wchar_t* const image :
       {L"images\\full.sys", L"images\\codepage.sys", L"images\\maxwords.sys", L"images\\nodescription.sys"}) {
    const std::string path = ImagePath(image);
    const std::string told = Told(ReadImageNames(path));
    EXPECT_EQ(told, Told(NamesByThePlatform(path))) << path;
    EXPECT_THAT(told, testing::Not(testing::EndsWith("none"))) << path;
  }
  const std::string library = ImagePath(L"driverinfo.dll");
  EXPECT_EQ(Told(ReadImageNames(library)), Told(NamesByThePlatform(library)));
  EXPECT_THAT(Told(ReadImageNames(library)), testing::StartsWith("driverinfo.dll|"));
}

TEST(ImageNames, AreEmptyForAnyOtherFile) {
  const std::string nothing = Told(ImageNames());
  EXPECT_EQ(Told(ReadImageNames(ImagePath(L"no such file"))), nothing);
  const auto of = [](const std::string& content) {
    return Told(ReadImageNames([&content](std::uint64_t offset, void* bytes, std::size_t size) {
      if (offset > content.size() || size > content.size() - offset) return false;
      std::memcpy(bytes, content.data() + offset, size);
      return true;
    }));
  };
  EXPECT_EQ(of(""), nothing);
  EXPECT_EQ(of("MZ"), nothing);
  EXPECT_EQ(of("MZ" + std::string(100, '\xFF')), nothing);
}

}  // namespace
