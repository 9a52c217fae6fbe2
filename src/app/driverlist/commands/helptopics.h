/// @file
/// The topics that "driverlist help" explains besides commands.
#pragma once

#include <string_view>

namespace driverlist {

constexpr std::string_view MembersTopic = "members";
constexpr std::string_view ManTopic = "man";
constexpr std::string_view CompletionTopic = "completion";

}  // namespace driverlist
