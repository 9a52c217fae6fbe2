/// @file
/// Numbers and bytes that a seed alone decides, on every machine and with every standard library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace test {

class Random {
 public:
  explicit Random(std::uint64_t seed) : m_state(seed) {}

  /// The generator SplitMix64.
  std::uint64_t Next() {
    m_state += 0x9E3779B97F4A7C15;
    std::uint64_t mixed = m_state;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
    return mixed ^ (mixed >> 31);
  }

  /// 0 to `limit` - 1; 0 for a limit of 0.
  std::size_t Below(std::size_t limit) { return limit == 0 ? 0 : static_cast<std::size_t>(Next() % limit); }

  /// True once in `count` times.
  bool OneIn(std::size_t count) { return Below(count) == 0; }

  char Byte() { return static_cast<char>(Next() >> 56); }

  /// Small sizes often, large ones now and then: 0 to `largest`.
  std::size_t Size(std::size_t largest) {
    const std::size_t size = Below(largest + 1);
    return OneIn(4) ? size : size % 65;
  }

  template <typename Choices>
  const auto& Pick(const Choices& choices) {
    return choices[Below(std::size(choices))];
  }

  /// `size` bytes without zeros, of one flavour: letters, all that a path has, any byte, or one byte over and over.
  std::string Text(std::size_t size) {
    static constexpr char Path[] = "abcXYZ0123456789.\\/: %;~_-#?*<>|\"'[]=,";
    const std::size_t flavour = Below(4);
    const char repeated = static_cast<char>(1 + Below(255));
    std::string text(size, repeated);
    for (char& c : text) {
      if (flavour == 0) c = static_cast<char>('a' + Below(26));
      if (flavour == 1) c = Path[Below(sizeof(Path) - 1)];
      if (flavour == 2) c = static_cast<char>(1 + Below(255));
    }
    return text;
  }

 private:
  std::uint64_t m_state;
};

}  // namespace test
