/// @file
/// Turns a Wine prefix into the machine of a description, by the calls that set up a real one. All throw
/// std::runtime_error.
#pragma once

#include "description.h"

namespace samplemachine {

/// Takes away what makes machines differ: driver services (from the next start of the Wine server on), devices, OEM
/// packages, chipset packages. Wine's own display adapter and monitor come back when Wine starts.
void Clear();

/// Puts one fixed display adapter in the place of Wine's own, whose name depends on the version of Wine and whose
/// identity on the graphics card. Removes every other PCI device, too.
void ReplaceDisplayAdapter();

/// Makes everything that the description lists, and starts the drivers that run.
void Make(const Description& description);

/// What a machine that was made needs whenever Wine starts: replaces the display adapter as ReplaceDisplayAdapter()
/// does, keeps the description's own PCI devices, and starts the drivers that run.
void Start(const Description& description);

/// Takes away everything that the description lists.
void Remove(const Description& description);

}  // namespace samplemachine
