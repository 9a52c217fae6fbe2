/// @file
/// Reads JSON value by value, within limits and without keeping it in memory: a file may be of any size and come from
/// anybody.
#pragma once

#include <cstddef>
#include <cstdint>
#include <streambuf>
#include <string>
#include <string_view>

#include "platform/inputproblem.h"

namespace Orvane {

/// How deep arrays and objects may be nested.
constexpr std::size_t DeepestNesting = 16;

/// The longest text, and the longest distance from one text to the next, in bytes.
constexpr std::size_t LongestText = 1 << 20;

/// A text that is not JSON, or only its beginning. what() is "is damaged: ...".
struct DamagedJson : InputProblem {
  using InputProblem::InputProblem;
};

enum class JsonType {
  Null,
  False,
  True,
  /// A whole number from 0 to 2^64 - 1.
  Number,
  OtherNumber,
  Text,
  Array,
  Object
};

/// For sentences: "a text", "null".
std::string_view JsonTypeName(JsonType type);

/// A value that holds no other values.
struct JsonScalar {
  JsonType type = JsonType::Null;
  /// Of a text; valid while the event lasts.
  std::string_view text;
  /// Of a Number.
  std::uint64_t number = 0;
};

/// Receives the parts of a JSON text in order. May throw, which ends the reading.
class JsonEvents {
 public:
  virtual void Begin(JsonType arrayOrObject) = 0;
  virtual void End() = 0;
  /// The name of a member, whose value follows.
  virtual void Name(const std::string& name) = 0;
  virtual void Value(const JsonScalar& value) = 0;

 protected:
  ~JsonEvents() = default;
};

/// Reads `text`, which is one JSON text in UTF-8 from beginning to end. Throws DamagedJson if it is not JSON, and
/// InputProblem if it exceeds a limit.
void ReadJson(std::streambuf& text, JsonEvents& events);

}  // namespace Orvane
