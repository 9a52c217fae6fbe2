#include "console.h"

#include <array>
#include <stdexcept>

#include "machine.h"
#include "platform/encoding.h"
#include "temporaryfiles.h"

namespace test {
namespace {

constexpr std::array<DWORD, 3> Names = {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};

StandardHandles HandlesNow() {
  StandardHandles handles{};
  for (std::size_t i = 0; i < Names.size(); ++i) handles[i] = GetStdHandle(Names[i]);
  return handles;
}

void Use(const StandardHandles& handles) {
  for (std::size_t i = 0; i < Names.size(); ++i) SetStdHandle(Names[i], handles[i]);
}

CONSOLE_SCREEN_BUFFER_INFO InfoOf(HANDLE output) {
  CONSOLE_SCREEN_BUFFER_INFO info{};
  if (!GetConsoleScreenBufferInfo(output, &info)) throw std::runtime_error("the console has no screen");
  return info;
}

[[noreturn]] void Fail(const char* what) {
  throw std::runtime_error(std::string(what) + ": error " + std::to_string(GetLastError()));
}

PROCESS_INFORMATION Start(std::wstring commandLine, const STARTUPINFOW& start, DWORD flags) {
  PROCESS_INFORMATION started{};
  STARTUPINFOW copy = start;
  if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, flags, nullptr, nullptr, &copy, &started)) {
    Fail("cannot start a program on a console");
  }
  CloseHandle(started.hThread);
  return started;
}

/// The process needs a while until it has its console.
bool Attach(DWORD process) {
  for (int i = 0; i < 1000; ++i) {
    if (AttachConsole(process)) return true;
    Sleep(10);
  }
  return false;
}

}  // namespace

// A console of this process would have a window, for which there may be no desktop.
Console::Console() {
  SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};
  HANDLE read = nullptr;
  HANDLE write = nullptr;
  if (!CreatePipe(&read, &write, &inherited, 0)) Fail("there is no pipe");
  const Orvane::FileHandle input(read);
  m_keeperInput.reset(write);
  SetHandleInformation(write, HANDLE_FLAG_INHERIT, 0);
  STARTUPINFOW start{};
  start.cb = sizeof(start);
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = read;
  const Orvane::FileHandle nowhere(
      CreateFileW(L"NUL", GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, OPEN_EXISTING, 0, nullptr));
  start.hStdOutput = nowhere.get();
  start.hStdError = nowhere.get();
  const PROCESS_INFORMATION keeper = Start(L"cmd.exe /d /q", start, CREATE_NO_WINDOW);
  m_keeper.reset(keeper.hProcess);

  const StandardHandles own = HandlesNow();
  FreeConsole();
  if (!Attach(keeper.dwProcessId)) Fail("there is no console");
  m_handles = HandlesNow();
  Use(own);
  m_output.reset(CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                             OPEN_EXISTING, 0, nullptr));
  if (!m_output) Fail("the console has no output");
}

Console::~Console() {
  m_output.reset();
  m_keeperInput.reset();
  WaitForSingleObject(m_keeper.get(), INFINITE);
  // Wine closes those that are in use.
  const StandardHandles own = HandlesNow();
  Use(m_handles);
  FreeConsole();
  Use(own);
}

std::string Console::Screen() const {
  const COORD size = InfoOf(m_output.get()).dwSize;
  std::string screen;
  for (SHORT y = 0; y < size.Y; ++y) {
    std::wstring line(static_cast<std::size_t>(size.X), L' ');
    DWORD read = 0;
    ReadConsoleOutputCharacterW(m_output.get(), line.data(), static_cast<DWORD>(line.size()), {0, y}, &read);
    line.resize(read);
    screen += Orvane::Utf8FromWide(line.substr(0, line.find_last_not_of(L' ') + 1)) + "\n";
  }
  return screen.substr(0, screen.find_last_not_of('\n') + 1);
}

DWORD Console::Mode() const {
  DWORD mode = 0;
  GetConsoleMode(m_output.get(), &mode);
  return mode;
}

void Console::Resize(SHORT columns, SHORT lines) const {
  const SMALL_RECT smallest = {0, 0, 0, 0};
  const SMALL_RECT window = {0, 0, static_cast<SHORT>(columns - 1), static_cast<SHORT>(lines - 1)};
  // A window does not reach beyond its screen, at no time.
  SetConsoleWindowInfo(m_output.get(), TRUE, &smallest);
  SetConsoleScreenBufferSize(m_output.get(), {columns, lines});
  SetConsoleWindowInfo(m_output.get(), TRUE, &window);
}

void Console::PressCtrlC() const {
  // All processes of the console get it.
  SetConsoleCtrlHandler(nullptr, TRUE);
  if (!GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0)) Fail("the console takes no Ctrl+C");
}

Orvane::ProcessHandle Console::StartDriverlist(const std::wstring& arguments) const {
  STARTUPINFOW start{};
  start.cb = sizeof(start);
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = m_output.get();
  start.hStdError = m_output.get();
  return Orvane::ProcessHandle(
      Start(L"\"" + ProgramDirectory() + L"\\driverlist.exe\" " + arguments, start, 0).hProcess);
}

}  // namespace test
