/// @file
/// The reason why a file cannot be used.
#pragma once

#include <stdexcept>

namespace Orvane {

/// what() continues a sentence that begins with the file's path: "cannot be read: it is a folder".
struct InputProblem : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace Orvane
