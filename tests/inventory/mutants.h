/// @file
/// Texts that were damaged on purpose.
#pragma once

#include <string>

#include "random.h"

namespace test {

/// `text` with some of its bytes changed, removed, doubled or replaced, or cut short.
inline std::string Damaged(std::string text, Random& random) {
  static const std::string pieces[] = {"{",    "}",    "[",          "]",       "\"",        ",",
                                       ":",    "null", "-1",         "1e99",    "false",     "\\u0",
                                       "\xFF", "",     "[[[[[[[[[[", "\"id\":", "\"rules\":"};
  const std::size_t changes = 1 + random.Below(4);
  for (std::size_t i = 0; i < changes && !text.empty(); ++i) {
    const std::size_t at = random.Below(text.size());
    switch (random.Below(5)) {
      case 0:
        text[at] = random.Byte();
        break;
      case 1:
        text.erase(at, random.Size(100));
        break;
      case 2:
        text.insert(at, text.substr(random.Below(text.size()), random.Size(200)));
        break;
      case 3:
        text.insert(at, random.Pick(pieces));
        break;
      default:
        text.resize(at);
        break;
    }
  }
  return text;
}

}  // namespace test
