#include "inventory/jsontree.h"

#include <utility>
#include <vector>

#include "inventory/input.h"
#include "platform/jsoninput.h"

namespace inventory {
namespace {

using Orvane::JsonScalar;
using Orvane::JsonType;

Json JsonOf(const JsonScalar& value) {
  switch (value.type) {
    case JsonType::False:
      return false;
    case JsonType::True:
      return true;
    case JsonType::Number:
      return value.number;
    case JsonType::OtherNumber:
      return -0.5;
    case JsonType::Text:
      return std::string(value.text);
    default:
      return nullptr;
  }
}

/// Builds the tree from the events of the parser.
class TreeBuilder final : public Orvane::JsonEvents {
 public:
  void Begin(JsonType type) override {
    Json& added = Add(type == JsonType::Object ? Json::object() : Json::array());
    m_open.push_back({&added, Pointer()});
  }

  void End() override { m_open.pop_back(); }

  void Name(const std::string& name) override {
    Count(name.size());
    m_name = name;
    Json& object = *m_open.back().value;
    if (object.contains(name)) throw InputProblem("has a member twice: " + Pointer());
  }

  void Value(const JsonScalar& value) override {
    Count(value.text.size());
    Add(JsonOf(value));
  }

  Json Take() { return std::move(m_root); }

 private:
  struct Open {
    Json* value;
    std::string pointer;
  };

  /// The JSON Pointer of the value that was added last.
  std::string Pointer() const {
    if (m_open.empty()) return std::string();
    const Open& parent = m_open.back();
    return parent.value->is_array() ? PointerTo(parent.pointer, parent.value->size() - 1)
                                    : PointerTo(parent.pointer, m_name);
  }

  void Count(std::size_t bytes) {
    m_bytes += bytes;
    if (m_bytes > MostTreeBytes) throw InputProblem("contains more than 1 MiB of text");
  }

  /// Pointers to open arrays and objects stay valid: only the innermost one grows, and what it holds so far is closed.
  Json& Add(Json value) {
    if (++m_values > MostTreeValues) throw InputProblem("contains more than 20,000 values");
    if (m_open.empty()) return m_root = std::move(value);
    Json& parent = *m_open.back().value;
    if (parent.is_array()) return parent.emplace_back(std::move(value));
    return parent[m_name] = std::move(value);
  }

  Json m_root;
  std::vector<Open> m_open;
  std::string m_name;
  std::size_t m_values = 0;
  std::size_t m_bytes = 0;
};

/// Escaped as in RFC 6901. A long name is cut, since people read the pointer.
std::string Escaped(std::string_view name) {
  constexpr std::size_t longest = 100;
  std::string escaped;
  for (const char c : name.substr(0, longest)) {
    if (c == '~') {
      escaped += "~0";
    } else if (c == '/') {
      escaped += "~1";
    } else {
      escaped += c;
    }
  }
  return escaped + (name.size() > longest ? "..." : "");
}

}  // namespace

Json ReadJsonTree(std::streambuf& text) {
  TreeBuilder builder;
  Orvane::ReadJson(text, builder);
  return builder.Take();
}

std::string PointerTo(const std::string& pointer, std::string_view name) { return pointer + "/" + Escaped(name); }

std::string PointerTo(const std::string& pointer, std::size_t index) { return pointer + "/" + std::to_string(index); }

}  // namespace inventory
