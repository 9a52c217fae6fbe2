/// @file
/// Catalogs: files that hold the signature of other files, by their hashes. Most drivers of a machine are signed so.
#pragma once

#include <memory>
#include <string>

namespace trust {

struct Hashes;
struct Signature;

/// The catalogs that are installed on this machine. Make one for all the files of a run: where the platform cannot look
/// up SHA-256 hashes, the first question reads every catalog of CatRoot, and later ones use what was read.
///
/// May be asked from several threads.
class Catalogs {
 public:
  Catalogs();
  Catalogs(const Catalogs&) = delete;
  Catalogs& operator=(const Catalogs&) = delete;
  ~Catalogs();

  /// The signature of the file at `path` (full path, UTF-8) by a catalog that lists it: by the hash of its image, or by
  /// that of the file when it is no image. Of several catalogs one that is valid, or else the first. `Unsigned` when no
  /// catalog lists it.
  Signature Verify(const std::string& path, const Hashes& hashes) const;

 private:
  struct Implementation;
  std::unique_ptr<Implementation> m_implementation;
};

}  // namespace trust
