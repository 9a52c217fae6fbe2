/// @file
/// What can be true of a record. Every count, colour, rule and filter of the program asks here, so that all agree.
#pragma once

#include <string_view>

#include "inventory/record.h"

namespace inventory {

bool IsService(const Record& record);
bool IsDevice(const Record& record);
bool IsPackage(const Record& record);

/// A service that runs.
bool IsRunning(const Record& record);

/// A service that Windows starts by itself: at boot, by the system, or automatically.
bool StartsByItself(const Record& record);

/// A service whose configured image is not there.
bool IsImageMissing(const Record& record);

/// A service whose image was looked at; not one whose image is missing.
bool IsVerified(const Record& record);

/// An image without a signature, by the platform's word.
bool IsUnsigned(const Record& record);

/// An image with a signature that does not hold.
bool HasInvalidSignature(const Record& record);

/// Whether the image itself is on a list, rather than its name.
bool IsListed(const trust::KnownMatch& match);

/// An image that a list knows as malicious.
bool IsKnownMalicious(const Record& record);

/// An image that a list knows as vulnerable, and no list as malicious.
bool IsKnownVulnerable(const Record& record);

/// An image that has name and version of a listed one, and is none itself.
bool HasListedName(const Record& record);

/// A device from no package: nothing was installed for it.
bool HasNoDriver(const Record& record);

/// A device for which Windows reports a problem.
bool HasProblem(const Record& record);

/// Whether `inf` is the published name of a package that did not come with Windows: "oem*.inf".
bool IsOemInf(std::string_view inf);

/// A package that did not come with Windows.
bool IsOemPackage(const Record& record);

/// Not by the maker of Windows. A record without provider counts: nobody knows whose it is.
bool IsThirdParty(const Record& record);

/// Whether a version says something: not the empty text, and not "N/A", which stands for none.
bool IsKnownVersion(std::string_view version);

}  // namespace inventory
