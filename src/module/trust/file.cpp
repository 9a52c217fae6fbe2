#include "trust/file.h"

#include <algorithm>

#include "platform/encoding.h"

namespace trust {

File::File(const std::string& path)
    : m_handle(CreateFileW(Orvane::WideFromUtf8(path).c_str(), GENERIC_READ,
                           FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                           FILE_FLAG_SEQUENTIAL_SCAN, nullptr)) {
  LARGE_INTEGER size{};
  if (!m_handle) {
    m_error = GetLastError();
  } else if (GetFileType(m_handle.get()) != FILE_TYPE_DISK) {
    // Reading from a pipe or a console might never end.
    m_error = ERROR_BAD_FILE_TYPE;
  } else if (!GetFileSizeEx(m_handle.get(), &size)) {
    m_error = GetLastError();
  }
  m_size = static_cast<std::uint64_t>(size.QuadPart);
}

std::size_t File::Read(std::uint64_t offset, void* bytes, std::size_t size) {
  OVERLAPPED place{};
  place.Offset = static_cast<DWORD>(offset);
  place.OffsetHigh = static_cast<DWORD>(offset >> 32);
  DWORD read = 0;
  if (!ReadFile(m_handle.get(), bytes, static_cast<DWORD>(size), &read, &place)) {
    const DWORD error = GetLastError();
    if (error != ERROR_HANDLE_EOF && m_error == 0) m_error = error;
    return 0;
  }
  return std::min<std::size_t>(read, size);
}

bool File::ReadAt(std::uint64_t offset, void* bytes, std::size_t size) {
  return m_error == 0 && offset <= m_size && size <= m_size - offset && Read(offset, bytes, size) == size;
}

Bytes File::ReadBlock(std::uint64_t offset, std::string& block) {
  const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(block.size(), m_size - offset));
  const std::size_t read = Read(offset, block.data(), wanted);
  // The file shrank while it was read.
  if (read == 0 && m_error == 0) m_error = ERROR_FILE_INVALID;
  return Bytes(block.data(), read);
}

std::string ReadSmallFile(const std::string& path, std::size_t most) {
  File file(path);
  if (file.Error() != 0 || file.Size() > most) return {};
  std::string bytes(static_cast<std::size_t>(file.Size()), '\0');
  if (!file.ReadAt(0, bytes.data(), bytes.size())) return {};
  return bytes;
}

}  // namespace trust
