// driverlist as a whole process that shows the library's listing, from its start to the last byte of its output,
// against a process that only lists.
#include <windows.h>

#include <stdexcept>
#include <string>

#include "figures.h"
#include "platform/handles.h"

namespace {

using Orvane::FileHandle;
using Orvane::ProcessHandle;

/// Runs a program of this folder, with arguments behind its name, and returns what it printed.
std::string Output(const std::string& program, const std::string& arguments) {
  char path[MAX_PATH];
  const std::string self(path, GetModuleFileNameA(nullptr, path, MAX_PATH));
  std::string commandLine = "\"" + self.substr(0, self.rfind('\\') + 1) + program + "\" " + arguments;
  SECURITY_ATTRIBUTES inherited{sizeof(inherited), nullptr, TRUE};
  HANDLE ends[2] = {};
  if (!CreatePipe(&ends[0], &ends[1], &inherited, 0)) throw std::runtime_error("there is no pipe");
  const FileHandle read(ends[0]);
  FileHandle write(ends[1]);
  // Were it inherited, only the output of the process would end later.
  SetHandleInformation(read.get(), HANDLE_FLAG_INHERIT, 0);
  STARTUPINFOA start{};
  start.cb = sizeof(start);
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = start.hStdError = write.get();
  PROCESS_INFORMATION started{};
  if (!CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &started)) {
    throw std::runtime_error(program + " cannot be started");
  }
  const ProcessHandle process(started.hProcess);
  const ProcessHandle thread(started.hThread);
  write.reset();
  std::string output;
  char bytes[4096];
  for (DWORD count = 0; ReadFile(read.get(), bytes, sizeof(bytes), &count, nullptr) && count > 0;)
    output.append(bytes, count);
  return output;
}

/// Seconds until the pipe ends, which it does when the process does.
double SecondsOf(const std::string& program, const std::string& arguments, const std::string& expected) {
  std::string output;
  const double seconds = bench::Seconds([&] { output = Output(program, arguments); });
  if (output.find(expected) == std::string::npos)
    throw std::runtime_error(program + " lists no machine of benchmachine");
  return seconds;
}

void AddFigures() {
  bench::AddComparison({"driverlist, start to last byte", "ms", 1.3, "bare",
                        [] { return SecondsOf("barelist.exe", "", "."); }, "driverlist",
                        [] { return SecondsOf("driverlist.exe", "--mode all", "bench199.sys"); }});
}

}  // namespace

int main(int argc, char** argv) { return bench::Main(argc, argv, &AddFigures); }
