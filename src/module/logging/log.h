/// @file
/// Log lines of the modules, and where the host wants them.
///
///     Orvane::Log(4, __FILE__, __LINE__).Stream() << "3 services found";
///
/// writes one line when the statement ends. Nothing is written anywhere until the host chooses a sink:
///
///     Orvane::LogToFile(L"drivers.log", 1 << 20, 3);
///     Orvane::SetLogLevel(2);
///
/// Levels: 1 error, 2 warning, 3 information, 4 trace. Texts are in the system's ANSI code page; standard error and
/// files get them in UTF-8, with line breaks inside a text turned into blanks.
///
/// Lines may come from any thread; each reaches its sink whole, those of one thread in their order. The choice of sink
/// and level belongs to the host and may change at any time. Sinks that keep something open (a file, the host's
/// function) are let go when another sink is chosen: choose none before unloading this module while the process goes
/// on.
#pragma once

#include <cstddef>
#include <functional>
#include <sstream>
#include <string>

#if defined(_WIN32) && defined(LOGGING_EXPORTS)
#define LOGGING_API __declspec(dllexport)
#elif defined(_WIN32) && !defined(ORVANE_LINKED_IN)
#define LOGGING_API __declspec(dllimport)
#else
#define LOGGING_API
#endif

#if defined(_MSC_VER)
#pragma warning(push)
// Members of standard types have no import of their own; all modules share one run-time library anyway.
#pragma warning(disable : 4251)
#endif

namespace Orvane {

/// One line of the log, emitted when the object is destroyed. Its text is what was written to Stream() until then.
///
/// Another logging module can stand in the place of this one: it exports these three members, and this layout is theirs
/// too.
class LOGGING_API Log {
 public:
  /// `file` and `line` are the place in the source that logs; `file` must outlive the object. Throws std::bad_alloc.
  Log(int level, const char* file, int line);
  /// Emits the line. Throws nothing: a line that a sink cannot take is lost. Keeps GetLastError().
  ~Log();
  Log(const Log&) = delete;
  Log& operator=(const Log&) = delete;

  /// Takes the text of the line. The stream is made with the global locale of the process.
  std::ostringstream& Stream();

 private:
  int m_level;
  const char* m_file;
  int m_line;
  std::ostringstream m_stream;
};

/// Takes a line: its level, source file, source line and text. Called on the thread that logs, one line at a time.
/// Lines that it logs itself and exceptions that it throws are dropped.
using LogFunction = std::function<void(int level, const char* file, int line, const std::string& text)>;

/// Lines of levels 1 to `level` reach the sink; 0 for none. 4, all lines, until the host says otherwise.
LOGGING_API void SetLogLevel(int level);

/// Drops all lines. The choice until the host makes another.
LOGGING_API void LogToNothing();

/// Writes lines with time, level and place to standard error.
LOGGING_API void LogToStandardError();

/// Writes such lines to the debugger that is attached to the process.
LOGGING_API void LogToDebugger();

/// Appends such lines to the file at `path`, each at once. Before the file grows past `maxBytes` (at least 1) it is
/// renamed to "name.1.ext", and so on; of files so renamed `maxFiles` are kept. False, with the former sink kept, when
/// the file cannot be opened. Folders of the path that do not exist are made.
LOGGING_API bool LogToFile(const std::wstring& path, std::size_t maxBytes, std::size_t maxFiles);

/// Hands lines to `function`; an empty function drops them. Once another sink is chosen, from outside the function, the
/// function is not called again.
LOGGING_API void LogToFunction(LogFunction function);

}  // namespace Orvane

#if defined(_MSC_VER)
#pragma warning(pop)
#endif
