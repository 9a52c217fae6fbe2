/// @file
/// Failures on their way to a host: a status, and a sentence that belongs to the thread.
#pragma once

#include <new>
#include <stdexcept>
#include <string>

#include "driverinventory.h"

namespace flat {

/// Thrown to end a call with a status. what() is the sentence.
struct Failure : std::runtime_error {
  Failure(driverinventory_status itsStatus, const std::string& sentence)
      : std::runtime_error(sentence), status(itsStatus) {}
  driverinventory_status status;
};

/// Keeps a copy of `sentence` for the thread; if there is no memory for it, a sentence that says so.
void KeepSentence(const char* sentence) noexcept;

/// The sentence that was kept last for the thread; empty if there is none.
const char* KeptSentence() noexcept;

/// Keeps the sentence of the exception that is being handled, and returns its status.
driverinventory_status HandleException() noexcept;

/// Calls `function`, which returns a status or throws. No exception leaves this function.
template <typename Function>
driverinventory_status Guarded(const Function& function) noexcept {
  try {
    return function();
  } catch (...) {
    return HandleException();
  }
}

}  // namespace flat
