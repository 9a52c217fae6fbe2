/// @file
/// Whether the platform may be asked for the version resource of a file. Asks nothing of the platform itself.
///
/// The platform maps an image and follows the numbers in its headers and in its resource directory. Where they lead out
/// of the image, not every platform survives: SurvivesDamagedImages() of platformquirks.h says which.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace Orvane {

/// Reads `size` bytes at `offset` of a file into `bytes`; false when the file has not all of them.
using ReadBytes = std::function<bool(std::uint64_t offset, void* bytes, std::size_t size)>;

/// False for an image whose headers, sections, version resource or way to it lie in part outside of it, and for one of
/// 16-bit Windows, which is no driver. True for any other file, also for one that is no image at all.
bool IsSoundImage(std::uint64_t fileSize, const ReadBytes& read);

/// The same for the file at `path` (full path, in the ANSI code page). True for a file that cannot be opened.
bool IsSoundImage(const std::string& path);

}  // namespace Orvane
