/// @file
/// Everything that can be true of a record. Every count, colour, rule and filter of the program uses these functions,
/// so all agree.
#pragma once

#include <string_view>

#include "inventory/inventory.h"
#include "inventory/record.h"

namespace inventory {

bool IsService(const Record& record);
bool IsDevice(const Record& record);
bool IsPackage(const Record& record);

/// A service that runs.
bool IsRunning(const Record& record);

/// A service that Windows starts by itself: at boot, by the system, or automatically.
bool StartsByItself(const Record& record);

/// A service whose configured image does not exist.
bool IsImageMissing(const Record& record);

/// A service whose image was read; false if the image is missing.
bool IsVerified(const Record& record);

/// An image without a signature, according to the platform.
bool IsUnsigned(const Record& record);

/// An image whose signature is not valid.
bool HasInvalidSignature(const Record& record);

/// Whether the image itself is on a list, rather than its name.
bool IsListed(const trust::KnownMatch& match);

/// An image that is listed as malicious.
bool IsKnownMalicious(const Record& record);

/// An image that is listed as vulnerable and not as malicious.
bool IsKnownVulnerable(const Record& record);

/// An image that has the name and version of a listed driver but is not listed itself.
bool HasListedName(const Record& record);

/// A device without a package: nothing was installed for it.
bool HasNoDriver(const Record& record);

/// A device for which Windows reports a problem.
bool HasProblem(const Record& record);

/// Whether `inf` is the published name of a package that did not come with Windows: "oem*.inf".
bool IsOemInf(std::string_view inf);

/// A package that did not come with Windows.
bool IsOemPackage(const Record& record);

/// Not by the maker of Windows. A record without a provider counts, because its origin is unknown.
bool IsThirdParty(const Record& record);

/// Whether a version is known: neither the empty text nor "N/A", which means no version.
bool IsKnownVersion(std::string_view version);

/// An inventory whose images were looked at, now or before it was written to a file.
bool IsVerified(const Inventory& inventory);

}  // namespace inventory
