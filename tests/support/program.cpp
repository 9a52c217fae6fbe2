#include "program.h"

#include <stdexcept>

#include "machine.h"

namespace test {
namespace {

/// What a program writes, kept until it is read. Wine's desktop, which a program may start, gets the handles of the
/// program and outlives it: a file could not be removed, and a pipe does not end.
class Pipe {
 public:
  Pipe() {
    SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};
    HANDLE read = nullptr;
    HANDLE write = nullptr;
    if (!CreatePipe(&read, &write, &inherited, 1 << 16)) throw std::runtime_error("there is no pipe");
    m_read.reset(read);
    m_write.reset(write);
    SetHandleInformation(read, HANDLE_FLAG_INHERIT, 0);
  }

  HANDLE End() const { return m_write.get(); }

  /// Appends what is there.
  void Drain(std::string& text) const {
    DWORD available = 0;
    while (PeekNamedPipe(m_read.get(), nullptr, 0, nullptr, &available, nullptr) && available > 0) {
      std::string part(available, '\0');
      DWORD read = 0;
      if (!ReadFile(m_read.get(), part.data(), available, &read, nullptr)) return;
      text.append(part, 0, read);
    }
  }

 private:
  Orvane::FileHandle m_read;
  Orvane::FileHandle m_write;
};

Orvane::ProcessHandle Started(std::wstring commandLine, HANDLE output, HANDLE errors) {
  STARTUPINFOW start{};
  start.cb = sizeof(start);
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = output;
  start.hStdError = errors;
  PROCESS_INFORMATION started{};
  if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &started)) {
    throw std::runtime_error("cannot start a program: error " + std::to_string(GetLastError()));
  }
  const Orvane::ProcessHandle thread(started.hThread);
  return Orvane::ProcessHandle(started.hProcess);
}

}  // namespace

ProgramResult RunProgram(const std::string& program, const std::wstring& arguments, HANDLE output) {
  const Pipe written;
  const Pipe complaints;
  const std::wstring path = ProgramDirectory() + L"\\" + std::wstring(program.begin(), program.end());
  const Orvane::ProcessHandle process =
      Started(L"\"" + path + L"\" " + arguments, output != nullptr ? output : written.End(), complaints.End());
  ProgramResult result{};
  for (bool hasEnded = false; !hasEnded;) {
    hasEnded = WaitForSingleObject(process.get(), 5) == WAIT_OBJECT_0;
    written.Drain(result.output);
    complaints.Drain(result.errors);
  }
  result.exitCode = STILL_ACTIVE;
  GetExitCodeProcess(process.get(), &result.exitCode);
  return result;
}

Orvane::FileHandle UnreadPipe() {
  SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};
  HANDLE read = nullptr;
  HANDLE write = nullptr;
  if (!CreatePipe(&read, &write, &inherited, 0)) throw std::runtime_error("there is no pipe");
  const Orvane::FileHandle closed(read);
  return Orvane::FileHandle(write);
}

ProgramResult Driverlist(const std::wstring& arguments, HANDLE output) {
  return RunProgram("driverlist.exe", arguments, output);
}

}  // namespace test
