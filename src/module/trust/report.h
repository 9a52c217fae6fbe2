/// @file
/// The steps that signatures in images and in catalogs share: evidence of the platform's verdict, and the report.
#pragma once

#include <optional>

#include "trust/platformverdict.h"
#include "trust/signature.h"
#include "trust/signaturestate.h"
#include "trust/signeddata.h"

namespace trust {

/// The platform's part of the evidence.
Evidence EvidenceOf(const PlatformVerdict& verdict);

/// State, code and sentence from the evidence, with the facts from `data` if the signature can be read.
Signature Report(const Evidence& evidence, const PlatformVerdict& verdict, const std::optional<SignedData>& data);

}  // namespace trust
