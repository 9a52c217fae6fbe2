/// @file
/// The hashes by which lists and catalogs know a driver image.
///
/// A file has two kinds. The hash of the file covers all of its bytes. The hash of the image (Authenticode) leaves out
/// what signing changes: checksum, certificate directory entry and certificate table. So it stays the same when an
/// image is signed again, and it is the one in signatures and catalogs.
#pragma once

#include <cstdint>
#include <string>

namespace trust {

/// The hashes to compute in addition to both SHA-256 hashes.
struct Wanted {
  bool fileSha1 = false;
  bool fileMd5 = false;
  /// Old signatures and catalogs also use it: if it is missing, Verify() reads the file again.
  bool imageSha1 = false;
  bool imageMd5 = false;
};

/// Hexadecimal, in lower case; empty if not requested or not known.
struct Hashes {
  std::string fileSha256;
  std::string fileSha1;
  std::string fileMd5;
  /// The hashes of the image are empty for a file that is not a PE image.
  std::string imageSha256;
  std::string imageSha1;
  std::string imageMd5;
  /// Size of the file in bytes.
  std::uint64_t size = 0;
  /// Why the file cannot be read: the Windows error and its message. Then there are no hashes.
  std::uint32_t errorCode = 0;
  std::string error;
};

/// Reads the file at `path` (full path, UTF-8) once, in constant memory. May be called from several threads.
Hashes HashImage(const std::string& path, const Wanted& wanted = {});

}  // namespace trust
