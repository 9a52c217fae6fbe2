#include "inventory/input.h"

#include <algorithm>

#include "platform/encoding.h"

namespace inventory {
namespace {

constexpr std::size_t ChunkSize = 1 << 16;

bool IsFolder(const std::wstring& path) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

std::string Reason(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
      return "there is no such file";
    case ERROR_ACCESS_DENIED:
      return "access is denied";
    default:
      break;
  }
  std::string reason = Orvane::ErrorText(error);
  if (!reason.empty() && reason.back() == '.') reason.pop_back();
  return reason;
}

[[noreturn]] void Unreadable(const std::string& reason) { throw InputProblem("cannot be read: " + reason); }

Orvane::FileHandle OpenToRead(const std::wstring& path) {
  constexpr DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  Orvane::FileHandle file(CreateFileW(path.c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING, 0, nullptr));
  if (file) return file;
  const DWORD error = GetLastError();
  Unreadable(IsFolder(path) ? "it is a folder" : Reason(error));
}

bool IsHighSurrogate(wchar_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }

}  // namespace

InputFile::InputFile(const std::string& path) : m_file(OpenToRead(Orvane::WideFromUtf8(path))), m_bytes(ChunkSize) {
  LARGE_INTEGER size{};
  // A device has no size; there, the bytes read are counted.
  if (GetFileSizeEx(m_file.get(), &size)) Count(static_cast<std::uint64_t>(size.QuadPart));
  m_length = 0;
}

void InputFile::Count(std::uint64_t bytes) {
  m_length += bytes;
  if (m_length > LongestInput) throw InputProblem("is longer than 1 GiB");
}

std::string_view InputFile::ReadBytes() {
  // A pipe may deliver less than a byte order mark at a time.
  const std::size_t wanted = m_encoding == Encoding::Unknown ? 3 : 1;
  std::size_t size = 0;
  while (size < wanted) {
    DWORD read = 0;
    const auto room = static_cast<DWORD>(m_bytes.size() - size);
    if (!ReadFile(m_file.get(), m_bytes.data() + size, room, &read, nullptr)) {
      const DWORD error = GetLastError();
      // This is how a pipe ends.
      if (error != ERROR_BROKEN_PIPE) Unreadable(Reason(error));
    }
    if (read == 0) break;
    size += read;
  }
  Count(size);
  return {m_bytes.data(), size};
}

std::string_view InputFile::WithoutMark(std::string_view bytes) {
  struct Mark {
    std::string_view bytes;
    Encoding encoding;
  };
  for (const Mark& mark : {Mark{"\xEF\xBB\xBF", Encoding::Utf8}, Mark{"\xFF\xFE", Encoding::Utf16LittleEndian},
                           Mark{"\xFE\xFF", Encoding::Utf16BigEndian}}) {
    if (bytes.substr(0, mark.bytes.size()) != mark.bytes) continue;
    m_encoding = mark.encoding;
    return bytes.substr(mark.bytes.size());
  }
  m_encoding = Encoding::Utf8;
  return bytes;
}

std::string InputFile::Utf8From(std::string_view bytes) {
  const bool isEnd = bytes.empty();
  const std::string all = m_oddByte + std::string(bytes);
  const std::size_t low = m_encoding == Encoding::Utf16LittleEndian ? 0 : 1;
  for (std::size_t i = 0; i + 1 < all.size(); i += 2) {
    const auto byte = [&all](std::size_t at) { return static_cast<unsigned char>(all[at]); };
    m_wide += static_cast<wchar_t>(byte(i + low) | byte(i + 1 - low) << 8);
  }
  m_oddByte = all.substr(all.size() - all.size() % 2);
  const bool isOpen = !isEnd && !m_wide.empty() && IsHighSurrogate(m_wide.back());
  const std::wstring whole = m_wide.substr(0, m_wide.size() - (isOpen ? 1 : 0));
  m_wide.erase(0, whole.size());
  return Orvane::Utf8FromWide(whole);
}

InputFile::int_type InputFile::underflow() {
  // A chunk may consist of a byte order mark alone, or end within a character.
  do {
    std::string_view bytes = ReadBytes();
    const bool isEnd = bytes.empty();
    if (m_encoding == Encoding::Unknown) bytes = WithoutMark(bytes);
    m_text = m_encoding == Encoding::Utf8 ? std::string(bytes) : Utf8From(bytes);
    if (isEnd) break;
  } while (m_text.empty());
  setg(m_text.data(), m_text.data(), m_text.data() + m_text.size());
  return m_text.empty() ? traits_type::eof() : traits_type::to_int_type(m_text.front());
}

InputFile::pos_type InputFile::seekpos(pos_type position, std::ios_base::openmode) {
  if (position != pos_type(0) || !SetFilePointerEx(m_file.get(), LARGE_INTEGER{}, nullptr, FILE_BEGIN)) {
    return pos_type(off_type(-1));
  }
  setg(nullptr, nullptr, nullptr);
  m_encoding = Encoding::Unknown;
  m_oddByte.clear();
  m_wide.clear();
  m_length = 0;
  return position;
}

}  // namespace inventory
