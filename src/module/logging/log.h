/// @file
/// The log of the modules, and the host's choice of where its lines go.
///
///     Orvane::Log(4, __FILE__, __LINE__).Stream() << "3 services found";
///
/// writes one line when the statement ends. Nothing is written anywhere until the host chooses a sink:
///
///     Orvane::LogToFile(L"drivers.log", 1 << 20, 3);
///     Orvane::SetLogLevel(2);
///
/// Levels: 1 error, 2 warning, 3 information, 4 trace. Texts are in the system's ANSI code page; standard error and
/// files receive them in UTF-8, with line breaks inside a text replaced by blanks.
///
/// Any thread may log. Each line reaches the sink whole, and the lines of one thread arrive in order. The host chooses
/// sink and level and may change both at any time. A sink that holds a resource (a file, the host's function) releases
/// it when another sink is chosen: call LogToNothing() before you unload this module from a process that continues.
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
// Members of standard types are not exported themselves; all modules share one run-time library anyway.
#pragma warning(disable : 4251)
#endif

namespace Orvane {

/// One line of the log, emitted when the object is destroyed. Its text is everything written to Stream() until then.
///
/// Another logging module can replace this one: it exports the constructor, the destructor and Stream(), and its class
/// has the same layout.
class LOGGING_API Log {
 public:
  /// `file` and `line` say where in the source the line is logged; `file` must outlive the object. Throws
  /// std::bad_alloc.
  Log(int level, const char* file, int line);
  /// Emits the line. Throws nothing: a line that the sink cannot take is lost. Preserves GetLastError().
  ~Log();
  Log(const Log&) = delete;
  Log& operator=(const Log&) = delete;

  /// The stream for the text of the line. It is created with the global locale of the process.
  std::ostringstream& Stream();

 private:
  int m_level;
  const char* m_file;
  int m_line;
  std::ostringstream m_stream;
};

/// Receives a line: its level, source file, source line and text. Called on the thread that logs, one line at a time.
/// Lines that the function itself logs and exceptions that it throws are dropped.
using LogFunction = std::function<void(int level, const char* file, int line, const std::string& text)>;

/// Only lines of levels 1 to `level` reach the sink; 0 drops them all. The level is 4, all lines, until the host sets
/// another.
LOGGING_API void SetLogLevel(int level);

/// Drops all lines. This is the sink until the host chooses another.
LOGGING_API void LogToNothing();

/// Writes lines with time, level and place to standard error.
LOGGING_API void LogToStandardError();

/// Writes the same lines to the debugger that is attached to the process.
LOGGING_API void LogToDebugger();

/// Appends the same lines to the file at `path`, each immediately. Before the file grows past `maxBytes` (at least 1),
/// it is renamed to "name.1.ext", the former "name.1.ext" to "name.2.ext", and so on; `maxFiles` renamed files stay.
/// Missing folders of the path are created. Returns false and keeps the former sink if the file cannot be opened.
LOGGING_API bool LogToFile(const std::wstring& path, std::size_t maxBytes, std::size_t maxFiles);

/// Passes lines to `function`; an empty function drops them. Once another sink has been chosen, from outside the
/// function, the function is not called again.
LOGGING_API void LogToFunction(LogFunction function);

}  // namespace Orvane

#if defined(_MSC_VER)
#pragma warning(pop)
#endif
