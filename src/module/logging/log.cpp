#include "log.h"

#include <windows.h>

#include <spdlog/logger.h>
#include <spdlog/sinks/base_sink.h>
#include <spdlog/sinks/msvc_sink.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <mutex>
#include <utility>

namespace Orvane {
namespace {

/// spdlog counts the other way: err is 4, debug is 1. The same formula leads back.
int Mirrored(int level) { return std::clamp(5 - level, 0, 4); }

/// Hands lines to the host's function.
class FunctionSink : public spdlog::sinks::base_sink<std::recursive_mutex> {
 public:
  explicit FunctionSink(LogFunction function) : m_function(std::move(function)) {}

 protected:
  void sink_it_(const spdlog::details::log_msg& message) override {
    if (m_busy) return;
    m_busy = true;
    try {
      m_function(Mirrored(message.level), message.source.filename, message.source.line,
                 std::string(message.payload.data(), message.payload.size()));
    } catch (...) {
      // The host's exception is not the library's to carry through a listing.
    }
    m_busy = false;
  }
  void flush_() override {}

 private:
  LogFunction m_function;
  bool m_busy = false;
};

/// The texts that a sink shows are one line of UTF-8 each, or as they were logged.
enum class TextForm { AsLogged, OneLineUtf8 };

struct Target {
  spdlog::logger logger;
  TextForm form;

  Target(spdlog::sink_ptr sink, TextForm textForm) : logger("", std::move(sink)), form(textForm) {
    logger.set_level(spdlog::level::trace);
    logger.flush_on(spdlog::level::trace);
    // A sink that fails loses its line; spdlog's own handler would write to the host's console.
    logger.set_error_handler([](const std::string&) {});
  }
};

/// The host's choice. Never destroyed at the end of the process, when a thread that was stopped may hold its mutex.
struct Choice {
  std::mutex mutex;
  std::shared_ptr<Target> target;
  int level = 4;
};

Choice* theChoice = new Choice;

/// Lines above this level are of no interest to anyone: the level of the choice, 0 without a target.
std::atomic<int> wantedLevel{0};

void Choose(std::shared_ptr<Target> target) {
  // The former target is destroyed with the parameter, after the mutex is released: the host's function may log even then.
  const std::lock_guard<std::mutex> lock(theChoice->mutex);
  theChoice->target.swap(target);
  wantedLevel = theChoice->target ? theChoice->level : 0;
}

bool IsWanted(int level) { return level >= 1 && level <= wantedLevel.load(std::memory_order_relaxed); }

/// `text` in UTF-8, line breaks at its end removed, those inside turned into blanks.
std::string OneLineUtf8(const std::string& text) {
  std::string line = text.substr(0, text.find_last_not_of("\r\n") + 1);
  std::replace_if(
      line.begin(), line.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
  const bool ascii = std::all_of(line.begin(), line.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  if (ascii) return line;
  const int size = static_cast<int>(line.size());
  std::wstring wide(static_cast<std::size_t>(MultiByteToWideChar(CP_ACP, 0, line.data(), size, nullptr, 0)), L'\0');
  const int wideSize = static_cast<int>(wide.size());
  MultiByteToWideChar(CP_ACP, 0, line.data(), size, wide.data(), wideSize);
  std::string utf8(
      static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, wide.data(), wideSize, nullptr, 0, nullptr, nullptr)),
      '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), wideSize, utf8.data(), static_cast<int>(utf8.size()), nullptr, nullptr);
  return utf8;
}

void Emit(int level, const char* file, int line, const std::string& text) {
  std::shared_ptr<Target> target;
  {
    const std::lock_guard<std::mutex> lock(theChoice->mutex);
    target = theChoice->target;
  }
  if (!target) return;
  const spdlog::source_loc place(file, line, "");
  const auto spdlogLevel = static_cast<spdlog::level::level_enum>(Mirrored(level));
  target->logger.log(place, spdlogLevel, target->form == TextForm::OneLineUtf8 ? OneLineUtf8(text) : text);
}

}  // namespace

Log::Log(int level, const char* file, int line) : m_level(level), m_file(file), m_line(line) {
  // Nobody wants the line, so its text is not even made.
  if (!IsWanted(level)) m_stream.setstate(std::ios_base::badbit);
}

Log::~Log() {
  if (m_stream.bad() || !IsWanted(m_level)) return;
  const DWORD error = GetLastError();
  try {
    Emit(m_level, m_file, m_line, m_stream.str());
  } catch (...) {
    // A destructor of the library must not end its host; the line is lost.
  }
  SetLastError(error);
}

std::ostringstream& Log::Stream() { return m_stream; }

void SetLogLevel(int level) {
  const std::lock_guard<std::mutex> lock(theChoice->mutex);
  theChoice->level = level;
  wantedLevel = theChoice->target ? level : 0;
}

void LogToNothing() { Choose(nullptr); }

void LogToStandardError() {
  Choose(std::make_shared<Target>(std::make_shared<spdlog::sinks::stderr_sink_mt>(), TextForm::OneLineUtf8));
}

void LogToDebugger() {
  Choose(std::make_shared<Target>(std::make_shared<spdlog::sinks::msvc_sink_mt>(), TextForm::AsLogged));
}

bool LogToFile(const std::wstring& path, std::size_t maxBytes, std::size_t maxFiles) {
  try {
    Choose(std::make_shared<Target>(std::make_shared<spdlog::sinks::rotating_file_sink_mt>(path, maxBytes, maxFiles),
                                    TextForm::OneLineUtf8));
    return true;
  } catch (const spdlog::spdlog_ex&) {
    return false;
  }
}

void LogToFunction(LogFunction function) {
  if (!function) return LogToNothing();
  Choose(std::make_shared<Target>(std::make_shared<FunctionSink>(std::move(function)), TextForm::AsLogged));
}

}  // namespace Orvane

/// Closes the sink when the module is unloaded; at the end of the process (`reserved` not null) Windows does.
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void* reserved) {
  if (reason == DLL_PROCESS_DETACH && reserved == nullptr) delete Orvane::theChoice;
  return TRUE;
}
