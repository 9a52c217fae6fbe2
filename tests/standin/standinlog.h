/// @file
/// A logging module that keeps all lines.
#pragma once

#include <string>
#include <vector>

#include "log.h"

/// The lines so far, oldest first: level and text.
LOGGING_API const std::vector<std::string>& StandInLines();
