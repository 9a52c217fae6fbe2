/// @file
/// Failures on their way to a host: a status, and a sentence that belongs to the thread.
#pragma once

#include <new>
#include <stdexcept>
#include <string>

#include "driverinventory.h"

namespace flat {

/// Ends a call with a status. what() is the sentence.
struct Failure : std::runtime_error {
  Failure(driverinventory_status itsStatus, const std::string& sentence)
      : std::runtime_error(sentence), status(itsStatus) {}
  driverinventory_status status;
};

/// Keeps a copy of `sentence` for the thread; if there is no memory for it, a sentence that says so.
void KeepSentence(const char* sentence) noexcept;

/// What was kept last for the thread; empty for nothing.
const char* KeptSentence() noexcept;

/// Keeps the sentence of the exception that is being handled, and says what status it is.
driverinventory_status HandleException() noexcept;

/// Calls `function`, which gives a status or throws. Nothing leaves it.
template <typename Function>
driverinventory_status Guarded(const Function& function) noexcept {
  try {
    return function();
  } catch (...) {
    return HandleException();
  }
}

}  // namespace flat
