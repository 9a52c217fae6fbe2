/// @file
/// How a benchmark becomes a figure of docs/quality.md: a line on standard output, its fields separated by tabs:
///
///     name    measured    unit    limit    what was measured
///
/// The unit is empty for a ratio, the limit for what is only reported.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

namespace bench {

/// Takes one measurement; what it returns is in seconds, bytes or whatever the figure is about.
using Measurement = std::function<double()>;

/// Two things, measured in turn.
struct Comparison {
  std::string name;
  /// In which both are shown: "ns", "us", "ms", or "KiB" of bytes.
  std::string unit;
  /// What `measured` over `base` may be at most.
  double limit;
  /// Such as "bare" and "library".
  std::string baseName;
  Measurement base;
  std::string measuredName;
  Measurement measured;
};

/// A figure that is the median of the ratios of pairs of measurements, after one pair that does not count. Who of a
/// pair comes first changes from pair to pair.
void AddComparison(Comparison comparison);

/// A figure that is the median of several measurements, shown in `unit` as in a Comparison, for information.
void AddValue(const std::string& name, const std::string& unit, Measurement measurement);

/// Seconds that `act` takes.
template <typename Act>
double Seconds(Act act) {
  LARGE_INTEGER frequency;
  LARGE_INTEGER begin;
  LARGE_INTEGER end;
  QueryPerformanceFrequency(&frequency);
  QueryPerformanceCounter(&begin);
  act();
  QueryPerformanceCounter(&end);
  return static_cast<double>(end.QuadPart - begin.QuadPart) / static_cast<double>(frequency.QuadPart);
}

/// main() of a program: calls `addFigures`, then takes the measurements that the command line asks for (--rounds=N, 15
/// when it says nothing, at least 7, and Google Benchmark's own options) and prints the figures. An exception of a
/// measurement ends the program with its sentence, without that figure.
int Main(int argc, char** argv, const std::function<void()>& addFigures);

}  // namespace bench
