// What a log line costs the library that writes it.
#include <benchmark/benchmark.h>

#include "log.h"

namespace {

void WriteLine(const std::string& name) {
  Orvane::Log(4, __FILE__, __LINE__).Stream() << "DRIVERINFO.name=" << name << " DRIVERINFO.file_version="
                                              << "10.0.1.2";
}

void LineWithoutSink(benchmark::State& state) {
  Orvane::LogToNothing();
  const std::string name = "acpi.sys";
  for ([[maybe_unused]] auto iteration : state) WriteLine(name);
}
BENCHMARK(LineWithoutSink);

void LineAboveTheLevel(benchmark::State& state) {
  Orvane::LogToFunction([](int, const char*, int, const std::string& text) { benchmark::DoNotOptimize(text.data()); });
  Orvane::SetLogLevel(3);
  const std::string name = "acpi.sys";
  for ([[maybe_unused]] auto iteration : state) WriteLine(name);
  Orvane::LogToNothing();
}
BENCHMARK(LineAboveTheLevel);

void LineToAFunction(benchmark::State& state) {
  Orvane::LogToFunction([](int, const char*, int, const std::string& text) { benchmark::DoNotOptimize(text.data()); });
  Orvane::SetLogLevel(4);
  const std::string name = "acpi.sys";
  for ([[maybe_unused]] auto iteration : state) WriteLine(name);
  Orvane::LogToNothing();
}
BENCHMARK(LineToAFunction);

}  // namespace
