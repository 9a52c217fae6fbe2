/// @file
/// The names and version in the version resource of an image. Portable, and trusts no number in the file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace trust {

/// Four numbers of 16 bits, the first one highest, so that versions compare as numbers.
using FileVersion = std::uint64_t;
constexpr FileVersion LastFileVersion = ~FileVersion{0};

/// The version at the beginning of `text`, such as "1.2.3.4" or "6, 0, 1 built by: someone"; missing parts are 0.
/// Nullopt if it does not begin with a number or if a number exceeds 16 bits.
std::optional<FileVersion> ParseFileVersion(std::string_view text);

/// "1.2.3.4".
std::string FileVersionText(FileVersion version);

/// Texts are UTF-8; those that the image does not have are empty.
struct ImageNames {
  std::string originalName;
  std::string internalName;
  std::string productName;
  std::string description;
  /// The file version in the fixed part.
  std::optional<FileVersion> version;
};

/// Reads `size` bytes at `offset` of a file into `bytes`; false when the file does not have all of them.
using ReadFileBytes = std::function<bool(std::uint64_t offset, void* bytes, std::size_t size)>;

/// The names in the first table of texts of the first version resource of a PE image. Empty for any other file; damaged
/// parts are left out.
ImageNames ReadImageNames(const ReadFileBytes& read);

/// The same for the file at `path` (full path, UTF-8). Empty for a file that cannot be read.
ImageNames ReadImageNames(const std::string& path);

}  // namespace trust
