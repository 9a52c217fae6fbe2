/// @file
/// How a text stands out.
#pragma once

namespace driverlist {

/// On a terminal that shows colours green, yellow and red; a page has its own way.
enum class Tone { Plain, Good, Doubtful, Bad };

}  // namespace driverlist
