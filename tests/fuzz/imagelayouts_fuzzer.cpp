// Which bytes of a file the hash of its image covers.
#include <stdexcept>
#include <vector>

#include "model.h"
#include "trust/imagelayout.h"

namespace {

/// Throws behind the end of the file.
std::size_t Number(const std::string& file, std::size_t offset, std::size_t size) {
  std::size_t number = 0;
  for (std::size_t i = 0; i < size; ++i) {
    number += static_cast<std::size_t>(static_cast<unsigned char>(file.at(offset + i))) << (8 * i);
  }
  return number;
}

/// The covered bytes, one by one, and the padding. Throws for what is no image.
std::string Covered(const std::string& file) {
  const std::size_t header = Number(file, 60, 4);
  if (file.substr(0, 2) != "MZ" || Number(file, header, 4) != 0x4550) throw std::out_of_range("no image");
  const std::size_t optional = header + 24;
  const std::size_t magic = Number(file, optional, 2);
  if (magic != 0x10B && magic != 0x20B) throw std::out_of_range("no image");
  const std::size_t directories = optional + (magic == 0x10B ? 96 : 112);
  const bool hasEntry = Number(file, directories - 4, 4) >= 5;
  const std::size_t entry = directories + 32;
  std::size_t table = hasEntry ? Number(file, entry, 4) : 0;
  std::size_t size = hasEntry ? Number(file, entry + 4, 4) : 0;
  if (table < entry + 8 || table >= file.size()) size = 0;

  std::string covered;
  for (std::size_t i = 0; i < file.size(); ++i) {
    if (i >= optional + 64 && i < optional + 68) continue;
    if (hasEntry && i >= entry && i < entry + 8) continue;
    if (i >= table && i - table < size) continue;
    covered += file[i];
  }
  if (size > 0) return covered;
  for (std::size_t i = file.size(); i % 8 != 0; ++i) covered += '\0';
  return covered;
}

std::string CoveredByModel(const std::string& file) {
  try {
    return Covered(file);
  } catch (const std::out_of_range&) {
    return "no image";
  }
}

std::string CoveredByLibrary(const std::string& file, std::size_t blockSize) {
  const auto layout = trust::ReadImageLayout(file.size(), [&](std::uint64_t offset, void* bytes, std::size_t size) {
    if (offset > file.size() || size > file.size() - offset) return false;
    file.copy(static_cast<char*>(bytes), size, offset);
    return true;
  });
  if (!layout) return "no image";
  std::string covered;
  for (std::size_t offset = 0; offset < file.size(); offset += blockSize) {
    const trust::Bytes block = trust::Bytes(file).substr(offset, blockSize);
    trust::ForEachCovered(*layout, offset, block, [&](trust::Bytes part) { covered += part; });
  }
  return covered + std::string(layout->padding, '\0');
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string file(reinterpret_cast<const char*>(data), size);
  const std::size_t blockSize = size == 0 ? 1 : 1 + data[size - 1];
  const std::string expected = CoveredByModel(file);
  model::Expect("covered bytes", CoveredByLibrary(file, blockSize), expected);
  model::Expect("covered bytes in one block", CoveredByLibrary(file, size + 1), expected);
  return 0;
}
