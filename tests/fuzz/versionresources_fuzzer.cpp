// Images whose version resource is anything, and whose headers lead anywhere.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "trust/imagenames.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::uint64_t read = 0;
  const trust::ImageNames names = trust::ReadImageNames([&](std::uint64_t offset, void* bytes, std::size_t count) {
    if (offset > size || count > size - offset) return false;
    read += count;
    std::memcpy(bytes, data + offset, count);
    return true;
  });
  // A small image is no long work, whatever its numbers say.
  if (read > 64 * (std::uint64_t{size} + 4096)) std::abort();
  const std::string text(reinterpret_cast<const char*>(data), size);
  if (const auto version = trust::ParseFileVersion(text)) {
    if (trust::ParseFileVersion(trust::FileVersionText(*version)) != version) std::abort();
  }
  return names.originalName.size() > size * 2 ? std::abort(), 0 : 0;
}
