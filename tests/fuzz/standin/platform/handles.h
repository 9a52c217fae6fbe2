/// @file
/// For the build machine, which opens no file of Windows.
#pragma once

namespace Orvane {

struct FileHandle {};

}  // namespace Orvane
