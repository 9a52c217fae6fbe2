/// @file
/// Logs one line: ORVANE_LOG(level) << text. The levels are explained in driverinfo.h.
///
/// Write only texts, and numbers through std::to_string: the stream has the host's global locale, which may group
/// digits. Logging may change GetLastError(): save the error first.
#pragma once

#include "log.h"

#define ORVANE_LOG(level) ::Orvane::Log((level), __FILE__, __LINE__).Stream()
