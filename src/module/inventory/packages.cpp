#include "inventory/packages.h"

#include <windows.h>
// After windows.h.
#include <setupapi.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <cwchar>
#include <utility>

#include "infsections.h"
#include "inventory/filenames.h"
#include "inventory/predicates.h"
#include "inventory/windowsdirectory.h"
#include "platform/encoding.h"
#include "platform/handles.h"
#include "platform/logline.h"
#include "platform/platformtext.h"

namespace inventory {
namespace {

using Orvane::InfHandle;
using Orvane::LowerCase;
using Orvane::Utf8FromWide;
using Orvane::WideFromUtf8;

std::wstring InfDirectory() { return WindowsDirectory() + L"\\inf\\"; }

/// An INF that is open.
class Inf {
 public:
  explicit Inf(const std::wstring& path) : m_inf(SetupOpenInfFileW(path.c_str(), nullptr, INF_STYLE_WIN4, nullptr)) {}

  explicit operator bool() const { return static_cast<bool>(m_inf); }

  /// Field `index` (the first is 1) of the line `key`; empty if there is no such field.
  std::string LineField(const std::wstring& section, const std::wstring& key, DWORD index) {
    INFCONTEXT line{};
    return SetupFindFirstLineW(m_inf.get(), section.c_str(), key.c_str(), &line) ? Field(line, index) : std::string();
  }

  /// Sets the files of `package`, and the disk of its first driver.
  void ReadFiles(PackageFacts& package) {
    std::set<std::string> known;
    bool hasDriver = false;
    for (const Orvane::InfFileSection& section : Orvane::InfFileSections) {
      INFCONTEXT line{};
      BOOL isLine = SetupFindFirstLineW(m_inf.get(), WideFromUtf8(section.files).c_str(), nullptr, &line);
      for (; isLine; isLine = SetupFindNextLine(&line, &line)) {
        std::string file = Field(line, 0);
        if (file.empty() || !known.insert(file).second) continue;
        if (!hasDriver && IsDriverFile(file)) {
          hasDriver = true;
          package.disk = LineField(WideFromUtf8(section.disks), WideFromUtf8(Field(line, 1)), 1);
        }
        package.files.push_back(std::move(file));
      }
    }
  }

  std::string OriginalName() {
    DWORD size = 0;
    if (!SetupGetInfInformationW(m_inf.get(), INFINFO_INF_SPEC_IS_HINF, nullptr, 0, &size)) return {};
    // At least as large as the fixed part of the structure.
    std::vector<char> information(std::max<std::size_t>(size, sizeof(SP_INF_INFORMATION)));
    auto* const inf = reinterpret_cast<SP_INF_INFORMATION*>(information.data());
    SP_ORIGINAL_FILE_INFO_W original{};
    original.cbSize = sizeof(original);
    if (!SetupGetInfInformationW(m_inf.get(), INFINFO_INF_SPEC_IS_HINF, inf, size, &size) ||
        !SetupQueryInfOriginalFileInformationW(inf, 0, nullptr, &original)) {
      return {};
    }
    const std::wstring name = Orvane::BoundedText(original.OriginalInfName, std::size(original.OriginalInfName));
    return Utf8FromWide(name.substr(name.rfind(L'\\') + 1));
  }

 private:
  /// Field `index` of a line (0 is its key); empty if there is no such field.
  static std::string Field(INFCONTEXT& line, DWORD index) {
    std::array<wchar_t, 4096> text{};
    if (!SetupGetStringFieldW(&line, index, text.data(), static_cast<DWORD>(text.size()), nullptr)) return {};
    return Utf8FromWide(Orvane::BoundedText(text.data(), text.size()));
  }

  InfHandle m_inf;
};

PackageFacts Read(const std::string& name) {
  PackageFacts package;
  package.inf = name;
  Inf inf(InfDirectory() + WideFromUtf8(name));
  if (!inf) {
    const DWORD error = GetLastError();
    ORVANE_LOG(2) << "The package " << name << " cannot be read: " << Orvane::ErrorText(error);
    return package;
  }
  package.provider = inf.LineField(L"Version", L"Provider", 1);
  package.date = IsoDate(inf.LineField(L"Version", L"DriverVer", 1));
  package.version = inf.LineField(L"Version", L"DriverVer", 2);
  package.class_name = inf.LineField(L"Version", L"Class", 1);
  package.original_inf = inf.OriginalName();
  inf.ReadFiles(package);
  return package;
}

bool IsThere(const std::string& name) {
  return GetFileAttributesW((InfDirectory() + WideFromUtf8(name)).c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::vector<std::wstring> OemInfs() {
  std::vector<std::wstring> names;
  WIN32_FIND_DATAW file;
  const Orvane::FindHandle found(FindFirstFileW((InfDirectory() + L"oem*.inf").c_str(), &file));
  if (!found) return names;
  do {
    // The pattern also matches short names and longer extensions.
    if (IsOemInf(Utf8FromWide(file.cFileName))) names.emplace_back(file.cFileName);
  } while (FindNextFileW(found.get(), &file));
  const auto number = [](const std::wstring& name) { return std::wcstoul(name.c_str() + 3, nullptr, 10); };
  std::sort(names.begin(), names.end(), [number](const std::wstring& a, const std::wstring& b) {
    return std::pair(number(a), a) < std::pair(number(b), b);
  });
  return names;
}

}  // namespace

std::vector<PackageFacts> ReadPackages(const std::set<std::string>& inUse) {
  std::vector<PackageFacts> packages;
  std::set<std::string> known;
  for (const std::wstring& name : OemInfs()) {
    packages.push_back(Read(Utf8FromWide(name)));
    known.insert(LowerCase(packages.back().inf));
  }
  for (const std::string& name : inUse) {
    if (IsThere(name) && known.insert(LowerCase(name)).second) packages.push_back(Read(name));
  }
  return packages;
}

std::string IsoDate(const std::string& date) {
  const char* next = date.data();
  const char* const end = next + date.size();
  const auto read = [&next, end](std::ptrdiff_t mostDigits) {
    unsigned number = 0;
    next = std::from_chars(next, next + std::min(mostDigits, end - next), number).ptr;
    return number;
  };
  const auto sign = [&next, end] { return next == end ? '\0' : *next++; };
  const unsigned month = read(2);
  const char first = sign();
  const unsigned day = read(2);
  const char second = sign();
  const unsigned year = read(4);
  const bool isWhole = next == end && first == second && (first == '/' || first == '-');
  if (!isWhole || month < 1 || month > 12 || day < 1 || day > 31 || year < 1601) return {};
  char text[40];
  std::snprintf(text, sizeof(text), "%04u-%02u-%02u", year, month, day);
  return text;
}

}  // namespace inventory
