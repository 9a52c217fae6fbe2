/// @file
/// A host of the library that stands in a DLL of its own, guest.dll: when that is unloaded, the library goes with it,
/// and with it everything that the library keeps between listings.
#pragma once

#include <string>
#include <vector>

#include "records.h"

namespace sweeps {

class Guest {
 public:
  virtual ~Guest() = default;

  /// Lists into the guest's vector; `mode` is a DriverInfoSetType. What the library throws comes through.
  virtual int List(int mode) = 0;

  /// Puts a record of the host's own into the vector.
  virtual void Append(const std::string& name, const std::string& version) = 0;

  /// The vector.
  virtual std::vector<test::Fields> Records() const = 0;

  /// Empties the vector.
  virtual void Clear() = 0;
};

/// Exported by guest.dll. The caller deletes the guest before it unloads the DLL.
using MakeGuest = Guest*();

}  // namespace sweeps
