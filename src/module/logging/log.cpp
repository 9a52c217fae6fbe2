#include "log.h"

#include <windows.h>

#include <spdlog/logger.h>
#include <spdlog/sinks/base_sink.h>
#include <spdlog/sinks/rotating_file_sink.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <mutex>
#include <utility>

namespace Orvane {
namespace {

/// spdlog counts the other way: err is 4, debug is 1. The same formula leads back.
int Mirrored(int level) { return std::clamp(5 - level, 0, 4); }

std::wstring Wide(UINT codePage, const char* text, std::size_t size) {
  const int bytes = static_cast<int>(size);
  std::wstring wide(static_cast<std::size_t>(MultiByteToWideChar(codePage, 0, text, bytes, nullptr, 0)), L'\0');
  MultiByteToWideChar(codePage, 0, text, bytes, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

std::string Utf8(const std::wstring& wide) {
  const int size = static_cast<int>(wide.size());
  const int bytes = WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<std::size_t>(bytes), '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, utf8.data(), bytes, nullptr, nullptr);
  return utf8;
}

/// `text` in UTF-8, with line breaks at its end removed and those inside replaced by blanks.
std::string OneLineUtf8(const std::string& text) {
  std::string line = text.substr(0, text.find_last_not_of("\r\n") + 1);
  std::replace_if(
      line.begin(), line.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
  const bool ascii = std::all_of(line.begin(), line.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  return ascii ? line : Utf8(Wide(CP_ACP, line.data(), line.size()));
}

/// A sink that writes formatted lines with `Write`, which receives the lines of all threads one by one.
template <void (*Write)(const spdlog::memory_buf_t& line)>
class LineSink : public spdlog::sinks::base_sink<std::mutex> {
 protected:
  void sink_it_(const spdlog::details::log_msg& message) override {
    spdlog::memory_buf_t line;
    formatter_->format(message, line);
    Write(line);
  }
  void flush_() override {}
};

/// A console takes UTF-16, whatever its code page; anything else takes bytes.
void WriteToStandardError(const spdlog::memory_buf_t& line) {
  const HANDLE handle = GetStdHandle(STD_ERROR_HANDLE);
  DWORD mode = 0;
  // There is nowhere to report that a line of the log was not written.
  DWORD written = 0;
  if (GetConsoleMode(handle, &mode)) {
    const std::wstring wide = Wide(CP_UTF8, line.data(), line.size());
    WriteConsoleW(handle, wide.data(), static_cast<DWORD>(wide.size()), &written, nullptr);
  } else {
    WriteFile(handle, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
  }
}

void WriteToDebugger(const spdlog::memory_buf_t& line) {
  OutputDebugStringA(std::string(line.data(), line.size()).c_str());
}

/// Passes lines to the host's function until it is closed.
class FunctionSink : public spdlog::sinks::base_sink<std::recursive_mutex> {
 public:
  explicit FunctionSink(LogFunction function) : m_function(std::move(function)) {}

  /// Waits for a line that another thread is passing. Called from inside the function, it only keeps the function from
  /// being called again.
  void Close() {
    const std::lock_guard<std::recursive_mutex> lock(mutex_);
    m_isOpen = false;
  }

 protected:
  void sink_it_(const spdlog::details::log_msg& message) override {
    if (!m_isOpen || m_isBusy) return;
    m_isBusy = true;
    try {
      m_function(Mirrored(message.level), message.source.filename, message.source.line,
                 std::string(message.payload.data(), message.payload.size()));
    } catch (...) {
      // The host's exception must not pass through a listing of the library.
    }
    m_isBusy = false;
  }
  void flush_() override {}

 private:
  LogFunction m_function;
  bool m_isOpen = true;
  bool m_isBusy = false;
};

/// Where lines go.
class Target {
 public:
  /// `oneLineUtf8`: the sink receives each text as one line of UTF-8; otherwise, as it was logged.
  Target(const spdlog::sink_ptr& sink, bool oneLineUtf8) : m_logger("", sink), m_oneLineUtf8(oneLineUtf8) {
    m_logger.set_level(spdlog::level::trace);
    m_logger.flush_on(spdlog::level::trace);
    // A sink that fails loses its line; spdlog's own handler would write to the host's console.
    m_logger.set_error_handler([](const std::string&) {});
  }
  explicit Target(std::shared_ptr<FunctionSink> function) : Target(function, false) {
    m_function = std::move(function);
  }

  void Write(int level, const char* file, int line, const std::string& text) {
    m_logger.log(spdlog::source_loc(file, line, ""), static_cast<spdlog::level::level_enum>(Mirrored(level)),
                 m_oneLineUtf8 ? OneLineUtf8(text) : text);
  }

  void Close() {
    if (m_function) m_function->Close();
  }

 private:
  spdlog::logger m_logger;
  bool m_oneLineUtf8;
  std::shared_ptr<FunctionSink> m_function;
};

/// The host's choice.
struct Choice {
  std::mutex mutex;
  std::shared_ptr<Target> target;
  int level = 4;
};

/// Null until it is first needed: nothing is created when the module is loaded.
Choice* theChoice = nullptr;

/// Not destroyed at the end of the process, when a thread that was stopped may hold its mutex.
Choice& TheChoice() {
  static Choice& made = *(theChoice = new Choice);
  return made;
}

/// Lines above this level go nowhere. It is the level that the host chose, or 0 if there is no target.
std::atomic<int> wantedLevel{0};

void Choose(std::shared_ptr<Target> target) {
  {
    Choice& choice = TheChoice();
    const std::lock_guard<std::mutex> lock(choice.mutex);
    choice.target.swap(target);
    wantedLevel = choice.target ? choice.level : 0;
  }
  if (target) target->Close();
}

bool IsWanted(int level) { return level >= 1 && level <= wantedLevel.load(std::memory_order_relaxed); }

std::shared_ptr<Target> ChosenTarget() {
  Choice& choice = TheChoice();
  const std::lock_guard<std::mutex> lock(choice.mutex);
  return choice.target;
}

}  // namespace

Log::Log(int level, const char* file, int line) : m_level(level), m_file(file), m_line(line) {
  // Nobody wants the line, so its text is not even composed.
  if (!IsWanted(level)) m_stream.setstate(std::ios_base::badbit);
}

Log::~Log() {
  if (m_stream.bad() || !IsWanted(m_level)) return;
  const DWORD error = GetLastError();
  try {
    if (const std::shared_ptr<Target> target = ChosenTarget()) target->Write(m_level, m_file, m_line, m_stream.str());
  } catch (...) {
    // A destructor of the library must not end its host; the line is lost.
  }
  SetLastError(error);
}

std::ostringstream& Log::Stream() { return m_stream; }

void SetLogLevel(int level) {
  Choice& choice = TheChoice();
  const std::lock_guard<std::mutex> lock(choice.mutex);
  choice.level = level;
  wantedLevel = choice.target ? level : 0;
}

void LogToNothing() { Choose(nullptr); }

void LogToStandardError() {
  Choose(std::make_shared<Target>(std::make_shared<LineSink<&WriteToStandardError>>(), true));
}

void LogToDebugger() { Choose(std::make_shared<Target>(std::make_shared<LineSink<&WriteToDebugger>>(), false)); }

bool LogToFile(const std::wstring& path, std::size_t maxBytes, std::size_t maxFiles) {
  try {
    Choose(std::make_shared<Target>(std::make_shared<spdlog::sinks::rotating_file_sink_mt>(path, maxBytes, maxFiles),
                                    true));
    return true;
  } catch (const spdlog::spdlog_ex&) {
    return false;
  }
}

void LogToFunction(LogFunction function) {
  if (!function) return LogToNothing();
  Choose(std::make_shared<Target>(std::make_shared<FunctionSink>(std::move(function))));
}

}  // namespace Orvane

/// Releases the sink when the module is unloaded; at the end of the process (`reserved` is not null), Windows does so.
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void* reserved) {
  if (reason == DLL_PROCESS_DETACH && reserved == nullptr) {
    Orvane::wantedLevel = 0;
    delete std::exchange(Orvane::theChoice, nullptr);
  }
  return TRUE;
}
