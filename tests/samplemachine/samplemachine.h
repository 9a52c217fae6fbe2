/// @file
/// Turns a Wine prefix into the machine of a description, by the calls that set up a real one. All throw
/// std::runtime_error.
#pragma once

#include "description.h"

namespace samplemachine {

/// Takes away what makes machines differ: driver services (from the next start of the Wine server on), devices, OEM
/// packages, chipset packages. Of Wine's own devices, the display adapter and its monitor come back.
void Clear();

/// Makes everything that the description lists, and starts the drivers that run.
void Make(const Description& description);

/// Starts the drivers that run.
void Start(const Description& description);

/// Takes away everything that the description lists.
void Remove(const Description& description);

}  // namespace samplemachine
