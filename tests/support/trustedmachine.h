/// @file
/// What a machine trusts: root certificates and catalogs. Every function throws std::runtime_error when Windows
/// refuses. Paths are UTF-8.
#pragma once

#include <string>

namespace test {

/// Puts the certificate of the DER file at `path` among the trusted roots of this machine.
void AddTrustedRoot(const std::string& path);
/// Nothing happens when it is not there.
void RemoveTrustedRoot(const std::string& path);

/// Installs a copy of the catalog at `path` under its own file name, among those of drivers.
void AddCatalog(const std::string& path);
/// By its file name. Nothing happens when it is not there.
void RemoveCatalog(const std::string& path);

}  // namespace test
