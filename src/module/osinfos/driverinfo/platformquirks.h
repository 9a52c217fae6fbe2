/// @file
/// Where one platform differs from another. Nothing else in the library asks which platform this is.
#pragma once

namespace Orvane {

/// Whether the version functions of the platform survive an image whose headers or resources lead out of it. Windows
/// answers such questions with a failure; Wine ends the process.
bool SurvivesDamagedImages();

}  // namespace Orvane
