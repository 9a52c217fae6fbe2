#include "terminal/logfile.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "log.h"
#include "platform/encoding.h"
#include "terminal/output.h"

namespace driverlist {
namespace {

/// "2024-05-06 07:08:09.123", in the machine's time zone.
std::string LocalTime() {
  SYSTEMTIME now;
  GetLocalTime(&now);
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%04u-%02u-%02u %02u:%02u:%02u.%03u", now.wYear, now.wMonth, now.wDay,
                now.wHour, now.wMinute, now.wSecond, now.wMilliseconds);
  return text.data();
}

std::string_view LevelName(int level) {
  constexpr std::array<std::string_view, 4> names = {"error", "warning", "info", "debug"};
  return names[static_cast<std::size_t>(std::clamp(level, 1, 4) - 1)];
}

std::string_view FileName(std::string_view path) { return path.substr(path.find_last_of("\\/") + 1); }

/// `text` (ANSI code page) as one line of UTF-8: line breaks at its end removed, those inside turned into blanks.
std::string OneLine(const std::string& text) {
  std::string line = Orvane::Utf8FromAnsi(text.substr(0, text.find_last_not_of("\r\n") + 1));
  std::replace_if(
      line.begin(), line.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
  return line;
}

/// The log's own lines look the same.
std::string Formatted(int level, const char* file, int line, const std::string& text) {
  return std::string("[")
             .append(LocalTime())
             .append("] [")
             .append(LevelName(level))
             .append("] [")
             .append(FileName(file)) +
         ":" + std::to_string(line) + "] " + OneLine(text) + "\r\n";
}

/// "name.2.ext" for 2, the path itself for 0.
std::wstring Numbered(const std::wstring& path, unsigned number) {
  if (number == 0) return path;
  const std::size_t name = path.find_last_of(L"\\/:") + 1;
  std::size_t dot = path.rfind(L'.');
  // A name whose only dot comes first has no extension.
  if (dot == std::wstring::npos || dot <= name) dot = path.size();
  return path.substr(0, dot) + L"." + std::to_wstring(number) + path.substr(dot);
}

}  // namespace

LogFile::LogFile(const std::string& path) : m_path(Orvane::WideFromUtf8(path)) {
  Open();
  Orvane::LogToFunction([this](int level, const char* file, int line, const std::string& text) {
    Append(Formatted(level, file, line, text));
  });
}

LogFile::~LogFile() { Orvane::LogToNothing(); }

std::string LogFile::Problem() const {
  if (m_error == ERROR_SUCCESS) return std::string();
  return IsFolder(m_path) ? "it is a folder." : Orvane::ErrorText(m_error);
}

void LogFile::Open() {
  m_file.reset(CreateFileW(m_path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                           nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!m_file) m_error = GetLastError();
  LARGE_INTEGER size{};
  // A device has none.
  m_bytes = m_file && GetFileSizeEx(m_file.get(), &size) ? static_cast<std::uint64_t>(size.QuadPart) : 0;
}

void LogFile::Rotate() {
  m_file.reset();
  for (unsigned number = MaxFiles; number > 0; --number) {
    const std::wstring older = Numbered(m_path, number);
    if (MoveFileExW(Numbered(m_path, number - 1).c_str(), older.c_str(), MOVEFILE_REPLACE_EXISTING)) continue;
    const DWORD error = GetLastError();
    if (error != ERROR_FILE_NOT_FOUND) m_error = error;
  }
  if (m_error == ERROR_SUCCESS) Open();
}

void LogFile::Append(std::string_view line) {
  if (m_error != ERROR_SUCCESS) return;
  if (m_bytes > 0 && m_bytes + line.size() > MaxBytes) Rotate();
  if (m_error != ERROR_SUCCESS) return;
  DWORD written = 0;
  if (!WriteFile(m_file.get(), line.data(), static_cast<DWORD>(line.size()), &written, nullptr)) {
    m_error = GetLastError();
  } else if (written < line.size()) {
    m_error = ERROR_DISK_FULL;
  }
  m_bytes += written;
}

}  // namespace driverlist
