/// @file
/// The differences between platforms. Nothing else in the library asks which platform this is.
#pragma once

namespace Orvane {

/// Whether the version functions of the platform survive an image whose headers or resources point outside it. On
/// Windows the calls fail; Wine ends the process.
bool SurvivesDamagedImages();

}  // namespace Orvane
