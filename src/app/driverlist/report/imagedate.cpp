#include "imagedate.h"

#include <cstdio>

namespace driverlist {
namespace {

/// Whether `text` looks like `shape`, in which "0" stands for any digit.
bool HasShape(std::string_view text, std::string_view shape) {
  if (text.size() != shape.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool fits = shape[i] == '0' ? text[i] >= '0' && text[i] <= '9' : text[i] == shape[i];
    if (!fits) return false;
  }
  return true;
}

int Number(std::string_view digits) {
  int number = 0;
  for (const char c : digits) number = number * 10 + (c - '0');
  return number;
}

bool IsDay(const Day& day) {
  return day.year > 0 && day.month >= 1 && day.month <= 12 && day.day >= 1 && day.day <= 31;
}

}  // namespace

std::optional<ImageDate> ParseImageDate(std::string_view text) {
  const bool midnight = HasShape(text, "00/00/0000 ");
  if (!midnight && !HasShape(text, "00/00/0000 00:00:00")) return std::nullopt;
  const Day day = {Number(text.substr(6, 4)), Number(text.substr(0, 2)), Number(text.substr(3, 2))};
  if (!IsDay(day)) return std::nullopt;
  return ImageDate{day, midnight ? "00:00:00" : std::string(text.substr(11))};
}

std::string IsoText(const ImageDate& date) {
  char text[32];
  std::snprintf(text, sizeof(text), "%04d-%02d-%02d ", date.day.year, date.day.month, date.day.day);
  return text + date.time;
}

std::optional<Day> ParseIsoDay(std::string_view time) {
  if (!HasShape(time, "0000-00-00T00:00:00Z")) return std::nullopt;
  const Day day = {Number(time.substr(0, 4)), Number(time.substr(5, 2)), Number(time.substr(8, 2))};
  return IsDay(day) ? std::optional<Day>(day) : std::nullopt;
}

long DayNumber(const Day& day) {
  // Years that begin in March have their odd day at the end.
  const long months = day.year * 12L + day.month - 3;
  const long years = months / 12;
  const long leapDays = years / 4 - years / 100 + years / 400;
  return years * 365 + leapDays + (months % 12 * 153 + 2) / 5 + day.day;
}

}  // namespace driverlist
