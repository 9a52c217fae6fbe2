/// @file
/// A program of the project, run as a user would.
#pragma once

#include <windows.h>

#include <string>

#include "platform/handles.h"
#include "temporaryfiles.h"

namespace test {

struct ProgramResult {
  DWORD exitCode;
  std::string output;
  std::string errors;
};

/// Runs `program`, a file beside the test program, with `arguments` as they would be typed behind its name. Its
/// standard output goes to `output` when that is given, which stays open.
ProgramResult RunProgram(const std::string& program, const std::wstring& arguments, HANDLE output = nullptr);

/// The end to write to of a pipe that nobody reads. Processes that are started inherit it.
Orvane::FileHandle UnreadPipe();

/// Runs driverlist.exe.
ProgramResult Driverlist(const std::wstring& arguments, HANDLE output = nullptr);

}  // namespace test
