/// @file
/// Times as the documents write them: UTC, "2024-05-06T07:08:09Z". The order of such texts is the order of the times.
#pragma once

#include <string>
#include <string_view>

namespace driverlist {

/// Whether `text` is such a time.
bool IsIsoTime(std::string_view text);

/// "2024-05-06 07:08:09", for people. `time` is such a time.
std::string ReadableTime(std::string_view time);

/// The same moment of the calendar `years` earlier. `time` is such a time; there is no time before the year 0.
std::string YearsBefore(std::string_view time, int years);

}  // namespace driverlist
