/// @file
/// The two ways to find the catalogs that list a file, with the verdict of the platform on each.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "trust/algorithms.h"
#include "trust/platformverdict.h"

namespace trust {

/// The hash by which a catalog may list a file.
struct MemberHash {
  DigestAlgorithm algorithm;
  /// As bytes.
  std::string bytes;
};

struct CatalogVerdict {
  /// Full path, UTF-8.
  std::string catalog;
  PlatformVerdict verdict;
};

/// May be used by several threads.
class CatalogStore {
 public:
  virtual ~CatalogStore() = default;
  /// The verdict of the platform on each catalog that lists the file at `path` (full path, UTF-8) by `hash`.
  virtual std::vector<CatalogVerdict> Ask(const std::string& path, const MemberHash& hash) = 0;
};

/// The platform's catalog database. Null if the platform has no working database for SHA-256 hashes: before Windows 8,
/// under Wine, and if its function is a stub.
std::unique_ptr<CatalogStore> OpenPlatformCatalogs();

/// Our own index of every catalog below CatRoot, built by this call. It never looks a hash up with the platform: a
/// platform without SHA-256 support may end the process when it meets a SHA-256 catalog.
std::unique_ptr<CatalogStore> IndexCatRoot();

}  // namespace trust
