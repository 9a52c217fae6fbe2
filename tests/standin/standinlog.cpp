#include "standinlog.h"

namespace {

std::vector<std::string> lines;

}  // namespace

const std::vector<std::string>& StandInLines() { return lines; }

namespace Orvane {

Log::Log(int level, const char* file, int line) : m_level(level), m_file(file), m_line(line) {}

Log::~Log() { lines.push_back(std::to_string(m_level) + " " + m_stream.str()); }

std::ostringstream& Log::Stream() { return m_stream; }

}  // namespace Orvane
