#include "inventory/times.h"

#include <algorithm>

namespace inventory {
namespace {

std::int64_t Number(std::string_view digits) {
  std::int64_t number = 0;
  for (const char c : digits) number = number * 10 + (c - '0');
  return number;
}

bool HasShape(std::string_view text, std::string_view shape) {
  // "0" stands for any digit.
  return std::equal(text.begin(), text.end(), shape.begin(), shape.end(),
                    [](char c, char form) { return form == '0' ? c >= '0' && c <= '9' : c == form; });
}

/// Days since the beginning of 1970 in the proleptic Gregorian calendar.
std::int64_t DaysTo(std::int64_t year, std::int64_t month, std::int64_t day) {
  // Years begin in March here, so that a leap day is the last day of its year.
  const std::int64_t y = month > 2 ? year : year - 1;
  const std::int64_t m = month > 2 ? month - 3 : month + 9;
  constexpr std::int64_t daysBefore1970 = 719468;
  return 365 * y + y / 4 - y / 100 + y / 400 + (153 * m + 2) / 5 + day - 1 - daysBefore1970;
}

}  // namespace

std::optional<std::int64_t> SecondsOf(std::string_view time) {
  const bool isDay = HasShape(time, "0000-00-00");
  if (!isDay && !HasShape(time, "0000-00-00T00:00:00Z")) return std::nullopt;
  const auto part = [time](std::size_t at, std::size_t length) { return Number(time.substr(at, length)); };
  const std::int64_t days = DaysTo(part(0, 4), part(5, 2), part(8, 2));
  return days * 86400 + (isDay ? 0 : part(11, 2) * 3600 + part(14, 2) * 60 + part(17, 2));
}

}  // namespace inventory
