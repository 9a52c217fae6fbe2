/// @file
/// One line to the logging module: ORVANE_LOG(level) << text. Levels are explained in driverinfo.h.
///
/// Write texts only, numbers through std::to_string: the stream carries the host's global locale, which may group
/// digits. A line may change GetLastError(): take the error before it.
#pragma once

#include "log.h"

#define ORVANE_LOG(level) ::Orvane::Log((level), __FILE__, __LINE__).Stream()
