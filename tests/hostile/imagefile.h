/// @file
/// An image file that is damaged anew for each input.
#pragma once

#include <windows.h>

#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "hostile.h"
#include "platform/handles.h"
#include "scratchmachine.h"
#include "temporaryfiles.h"

namespace test {

/// A file that is an image with a version resource, which changes from input to input.
class ImageFile {
 public:
  ImageFile(const std::string& name, const std::string& resource)
      : m_file(TemporaryPath(name), L"images\\noresource.sys"), m_good(resource) {
    SetVersionResource(m_file.Path(), std::vector<char>(resource.begin(), resource.end()));
    Open(GENERIC_READ, [this](HANDLE file) {
      m_bytes.resize(GetFileSize(file, nullptr));
      DWORD read = 0;
      return ReadFile(file, m_bytes.data(), static_cast<DWORD>(m_bytes.size()), &read, nullptr);
    });
    m_offset = m_bytes.find(resource);
    m_place = static_cast<DWORD>(AddressOf(m_offset));
    m_entry = m_bytes.find(EntryBytes(m_place, static_cast<DWORD>(resource.size())));
    if (m_entry == std::string::npos) throw std::runtime_error("the resource is not in the image");
  }

  const std::string& Path() const { return m_file.Path(); }
  const std::string& Good() const { return m_good; }
  /// The good image, and where in it the resource directory tells place and size of the resource.
  const std::string& Bytes() const { return m_bytes; }
  std::size_t Entry() const { return m_entry; }
  /// The place that it tells, relative to the loaded image.
  DWORD Place() const { return m_place; }

  /// Damaged bytes in the place of the good ones; the directory says that they are at `place` and `size` long.
  void Rewrite(std::string resource, DWORD place, DWORD size) {
    resource.resize(m_good.size());
    Open(GENERIC_WRITE,
         [&](HANDLE file) { return Write(file, m_offset, resource) && Write(file, m_entry, EntryBytes(place, size)); });
  }

  /// The headers and all around the resource directory as in `bytes`.
  void Rewrite(const std::string& bytes) {
    const std::size_t directory = m_entry - 0x100;
    Open(GENERIC_WRITE, [&](HANDLE file) {
      return Write(file, 0, bytes.substr(0, 0x1000)) && Write(file, directory, bytes.substr(directory, 0x200));
    });
  }

 private:
  /// What the resource directory says of a resource.
  static std::string EntryBytes(DWORD place, DWORD size) {
    std::string entry(8, '\0');
    std::memcpy(entry.data(), &place, sizeof(place));
    std::memcpy(entry.data() + sizeof(place), &size, sizeof(size));
    return entry;
  }

  /// Where the byte at `offset` of the file stands once the image is loaded, relative to its beginning.
  std::size_t AddressOf(std::size_t offset) const {
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(m_bytes.data());
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(m_bytes.data() + dos->e_lfanew);
    const IMAGE_SECTION_HEADER* section = IMAGE_FIRST_SECTION(headers);
    for (WORD i = 0; i < headers->FileHeader.NumberOfSections; ++i, ++section) {
      if (offset >= section->PointerToRawData && offset - section->PointerToRawData < section->SizeOfRawData)
        return offset - section->PointerToRawData + section->VirtualAddress;
    }
    throw std::runtime_error("the resource is in no section");
  }

  static bool Write(HANDLE file, std::size_t offset, const std::string& bytes) {
    DWORD written = 0;
    return SetFilePointer(file, static_cast<LONG>(offset), nullptr, FILE_BEGIN) != INVALID_SET_FILE_POINTER &&
           WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
  }

  template <typename Act>
  void Open(DWORD access, Act act) {
    const Orvane::FileHandle file(CreateFileA(m_file.Path().c_str(), access, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!file || !act(file.get())) throw std::runtime_error("the image cannot be changed");
  }

  ScratchFile m_file;
  std::string m_good;
  std::string m_bytes;
  std::size_t m_offset = 0;
  std::size_t m_entry = 0;
  DWORD m_place = 0;
};

}  // namespace test
