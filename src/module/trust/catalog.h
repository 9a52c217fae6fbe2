/// @file
/// Catalogs: files that sign other files by listing their hashes. Most drivers of a machine are signed this way.
#pragma once

#include <memory>
#include <string>

namespace trust {

struct Hashes;
struct Signature;

/// The catalogs that are installed on this machine. Use one object for all files of a run: if the platform cannot look
/// up SHA-256 hashes, the first call reads every catalog in CatRoot, and later calls use the result.
///
/// May be used by several threads.
class Catalogs {
 public:
  Catalogs();
  Catalogs(const Catalogs&) = delete;
  Catalogs& operator=(const Catalogs&) = delete;
  ~Catalogs();

  /// The signature of the file at `path` (full path, UTF-8) in a catalog that lists it by the hash of its image, or by
  /// the hash of the file if it is not an image. Of several catalogs, a valid one, otherwise the first. `Unsigned` if
  /// no catalog lists it.
  Signature Verify(const std::string& path, const Hashes& hashes) const;

 private:
  struct Implementation;
  std::unique_ptr<Implementation> m_implementation;
};

}  // namespace trust
