/// @file
/// The two ways to ask which catalogs list a file, and what the platform says of them.
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

/// May be asked from several threads.
class CatalogStore {
 public:
  virtual ~CatalogStore() = default;
  /// What the platform says of each catalog that lists the file at `path` (full path, UTF-8) by `hash`.
  virtual std::vector<CatalogVerdict> Ask(const std::string& path, const MemberHash& hash) = 0;
};

/// The platform's catalog database. Null where the platform has none for SHA-256 hashes: before Windows 8, and where
/// its function is a stub.
std::unique_ptr<CatalogStore> OpenPlatformCatalogs();

/// An index of our own, of every catalog below CatRoot; read now. It never asks the platform by hash: one that has no
/// SHA-256 there may end the process at a catalog of SHA-256.
std::unique_ptr<CatalogStore> IndexCatRoot();

}  // namespace trust
