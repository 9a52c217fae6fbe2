/// @file
/// Whether it is safe to ask the platform for the version resource of a file. Calls nothing of the platform itself.
///
/// The platform maps an image and follows the numbers in its headers and in its resource directory. Not every platform
/// survives numbers that point outside the image; SurvivesDamagedImages() in platformquirks.h knows which do.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace Orvane {

/// Reads `size` bytes at `offset` of a file into `bytes`; false if the file does not have all of them.
using ReadBytes = std::function<bool(std::uint64_t offset, void* bytes, std::size_t size)>;

/// False if any header, any section, the version resource or a resource directory on the way to it reaches outside the
/// image. False also for an image of 16-bit Windows, which cannot be a driver. True for every other file, even one that
/// is not an image at all.
bool IsSoundImage(std::uint64_t fileSize, const ReadBytes& read);

/// The same for the file at `path` (full path, in the ANSI code page). True if the file cannot be opened.
bool IsSoundImage(const std::string& path);

}  // namespace Orvane
