#include "formats/html/isotime.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace driverlist {
namespace {

int Number(std::string_view digits) {
  int number = 0;
  for (const char c : digits) number = number * 10 + (c - '0');
  return number;
}

}  // namespace

bool IsIsoTime(std::string_view text) {
  // "0" stands for any digit.
  constexpr std::string_view shape = "0000-00-00T00:00:00Z";
  return std::equal(text.begin(), text.end(), shape.begin(), shape.end(),
                    [](char c, char form) { return form == '0' ? c >= '0' && c <= '9' : c == form; });
}

std::string ReadableTime(std::string_view time) {
  return std::string(time.substr(0, 10)) + " " + std::string(time.substr(11, 8));
}

std::string YearsBefore(std::string_view time, int years) {
  std::array<char, 16> year{};
  std::snprintf(year.data(), year.size(), "%04d", std::max(Number(time.substr(0, 4)) - years, 0));
  return year.data() + std::string(time.substr(4));
}

}  // namespace driverlist
