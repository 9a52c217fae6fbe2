#include "platform/jsoninput.h"

#include <algorithm>
#include <array>
#include <istream>
#include <nlohmann/json.hpp>
#include <vector>

namespace Orvane {
namespace {

/// Passes a text on. The parser keeps everything read since the last text began, so this refuses a text that would take
/// much memory long before the parser has read all of it.
class BoundedText : public std::streambuf {
 public:
  explicit BoundedText(std::streambuf& source) : m_source(source), m_chunk(1 << 16) {}

  bool IsAtEnd() const { return m_isAtEnd; }

  /// Counted from 1, for the character that was read last.
  std::size_t Line() const {
    return m_linesBefore + 1 + static_cast<std::size_t>(std::count(m_chunk.data(), LastRead(), '\n'));
  }

 protected:
  int_type underflow() override {
    if (gptr() != nullptr) m_linesBefore += static_cast<std::size_t>(std::count(eback(), egptr(), '\n'));
    const auto size = m_source.sgetn(m_chunk.data(), static_cast<std::streamsize>(m_chunk.size()));
    setg(m_chunk.data(), m_chunk.data(), m_chunk.data() + size);
    m_isAtEnd = size == 0;
    if (m_isAtEnd) return traits_type::eof();
    std::for_each(gptr(), egptr(), [this](char c) { Pass(c); });
    return traits_type::to_int_type(*gptr());
  }

 private:
  const char* LastRead() const { return gptr() > eback() ? gptr() - 1 : m_chunk.data(); }

  void Pass(char c) {
    if (c == '"' && !m_isEscaped) {
      m_isInText = !m_isInText;
      m_length = 0;
      return;
    }
    m_isEscaped = m_isInText && c == '\\' && !m_isEscaped;
    if (++m_length <= LongestText) return;
    throw InputProblem(m_isInText ? "contains a text of more than 1 MiB" : "contains more than 1 MiB without a text");
  }

  std::streambuf& m_source;
  std::vector<char> m_chunk;
  std::size_t m_linesBefore = 0;
  std::size_t m_length = 0;
  bool m_isInText = false;
  bool m_isEscaped = false;
  bool m_isAtEnd = false;
};

/// The functions that the parser calls.
class Parsing {
 public:
  Parsing(const BoundedText& text, JsonEvents& events) : m_text(text), m_events(events) {}

  // The names are the parser's.
  bool null() { return Scalar({JsonType::Null, {}, 0}); }
  bool boolean(bool value) { return Scalar({value ? JsonType::True : JsonType::False, {}, 0}); }
  bool number_integer(std::int64_t) { return Scalar({JsonType::OtherNumber, {}, 0}); }
  bool number_unsigned(std::uint64_t value) { return Scalar({JsonType::Number, {}, value}); }
  bool number_float(double, const std::string&) { return Scalar({JsonType::OtherNumber, {}, 0}); }
  bool string(const std::string& value) { return Scalar({JsonType::Text, value, 0}); }
  bool binary(const std::vector<std::uint8_t>&) { return true; }
  bool start_object(std::size_t) { return Begin(JsonType::Object); }
  bool start_array(std::size_t) { return Begin(JsonType::Array); }
  bool end_object() { return End(); }
  bool end_array() { return End(); }
  bool key(const std::string& name) {
    m_events.Name(name);
    return true;
  }
  bool parse_error(std::size_t, const std::string&, const std::exception&) {
    throw DamagedJson(m_text.IsAtEnd() ? "is damaged: it ends early"
                                       : "is damaged: line " + std::to_string(m_text.Line()) + " is not JSON");
  }

 private:
  bool Scalar(const JsonScalar& value) {
    m_events.Value(value);
    return true;
  }
  bool Begin(JsonType arrayOrObject) {
    if (++m_depth > DeepestNesting) {
      throw InputProblem("is nested more than " + std::to_string(DeepestNesting) + " levels deep");
    }
    m_events.Begin(arrayOrObject);
    return true;
  }
  bool End() {
    --m_depth;
    m_events.End();
    return true;
  }

  const BoundedText& m_text;
  JsonEvents& m_events;
  std::size_t m_depth = 0;
};

constexpr std::array<std::string_view, 8> TypeNames = {
    "null", "false", "true", "a whole number", "a number of another kind", "a text", "an array", "an object"};

}  // namespace

std::string_view JsonTypeName(JsonType type) { return TypeNames[static_cast<std::size_t>(type)]; }

void ReadJson(std::streambuf& text, JsonEvents& events) {
  BoundedText bounded(text);
  std::istream stream(&bounded);
  Parsing parsing(bounded, events);
  nlohmann::json::sax_parse(stream, &parsing);
}

}  // namespace Orvane
