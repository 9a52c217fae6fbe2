/// @file
/// The problems that Windows reports for devices.
#pragma once

#include <cstdint>
#include <string_view>

namespace inventory {

/// The platform's name for a problem code, such as "CM_PROB_FAILED_INSTALL" for 28; empty for a code without a name.
std::string_view ProblemName(std::uint64_t code);

}  // namespace inventory
