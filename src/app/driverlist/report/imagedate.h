/// @file
/// The date of a driver's image, as records write it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace driverlist {

/// A day of the calendar.
struct Day {
  int year;
  int month;
  int day;
};

/// A record's date, "MM/DD/YYYY HH:MM:SS" or at midnight "MM/DD/YYYY " (DriverData::date). Nothing for any other text.
struct ImageDate {
  Day day;
  /// "HH:MM:SS".
  std::string time;
};
std::optional<ImageDate> ParseImageDate(std::string_view text);

/// "2023-05-06 22:14:31", which nobody can read in two ways.
std::string IsoText(const ImageDate& date);

/// The day of a time such as "2024-05-06T07:08:09Z". Nothing for any other text.
std::optional<Day> ParseIsoDay(std::string_view time);

/// Days since a day that is always the same. A day of the month that the month does not have counts on into the next one.
long DayNumber(const Day& day);

}  // namespace driverlist
