#include "trust/file.h"
#include "trust/imagenames.h"

namespace trust {

ImageNames ReadImageNames(const std::string& path) {
  File file(path);
  if (file.Error() != 0) return {};
  return ReadImageNames(
      [&file](std::uint64_t offset, void* bytes, std::size_t size) { return file.ReadAt(offset, bytes, size); });
}

}  // namespace trust
