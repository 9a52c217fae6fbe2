#include "figures.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>

namespace bench {
namespace {

int rounds = 15;

/// What is common to the rounds of a figure.
struct Figure {
  std::string name;
  std::string unit;
  double limit = 0;
  std::string baseName;
  std::string measuredName;
};

std::vector<Figure> figures;

struct Unit {
  const char* name;
  double factor;
};

constexpr Unit Units[] = {{"ns", 1e9}, {"us", 1e6}, {"ms", 1e3}, {"KiB", 1.0 / 1024}};

double InUnit(double value, const std::string& unit) {
  for (const Unit& known : Units) {
    if (unit == known.name) return value * known.factor;
  }
  return value;
}

/// Prints a line for each figure, from the medians of its rounds.
class FigureReporter : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.error_occurred) {
        std::fprintf(stderr, "bench: %s: %s\n", run.run_name.function_name.c_str(), run.error_message.c_str());
        hasFailed = true;
      } else if (run.aggregate_name == "median") {
        Print(figures.at(static_cast<std::size_t>(run.counters.at("figure").value)), run.counters);
      }
    }
  }

  bool hasFailed = false;

 private:
  static void Print(const Figure& figure, const benchmark::UserCounters& counters) {
    if (figure.limit == 0) {
      std::printf("%s\t%.4g\t%s\t\t\n", figure.name.c_str(), InUnit(counters.at("measured").value, figure.unit),
                  figure.unit.c_str());
      return;
    }
    std::printf("%s\t%.3f\t\t%.2f\t%s %.4g %s, %s %.4g %s\n", figure.name.c_str(), counters.at("ratio").value,
                figure.limit, figure.baseName.c_str(), InUnit(counters.at("base").value, figure.unit),
                figure.unit.c_str(), figure.measuredName.c_str(), InUnit(counters.at("measured").value, figure.unit),
                figure.unit.c_str());
    std::fflush(stdout);
  }
};

/// Registers a benchmark whose rounds are repetitions of one iteration.
void Register(Figure figure, std::function<void(benchmark::State&)> round) {
  const double index = static_cast<double>(figures.size());
  figures.push_back(figure);
  auto* const registered = benchmark::RegisterBenchmark(figure.name.c_str(), [=](benchmark::State& state) {
    for (auto iteration : state) {
      try {
        round(state);
      } catch (const std::exception& problem) {
        state.SkipWithError(problem.what());
      }
    }
    state.counters["figure"] = index;
  });
  registered->Iterations(1)->Repetitions(rounds)->ReportAggregatesOnly()->UseManualTime();
}

}  // namespace

void AddComparison(Comparison comparison) {
  // Counts the rounds; the first warms up both sides.
  const auto round = std::make_shared<int>(0);
  Register({comparison.name, comparison.unit, comparison.limit, comparison.baseName, comparison.measuredName},
           [=](benchmark::State& state) {
             if (*round == 0) {
               comparison.base();
               comparison.measured();
             }
             double base = 0;
             double measured = 0;
             if (++*round % 2 == 0) measured = comparison.measured();
             base = comparison.base();
             if (*round % 2 == 1) measured = comparison.measured();
             state.SetIterationTime(measured);
             state.counters["base"] = base;
             state.counters["measured"] = measured;
             state.counters["ratio"] = measured / base;
           });
}

void AddValue(const std::string& name, const std::string& unit, Measurement measurement) {
  Register({name, unit, 0, "", ""}, [=](benchmark::State& state) {
    const double measured = measurement();
    state.SetIterationTime(measured);
    state.counters["measured"] = measured;
  });
}

int Main(int argc, char** argv, const std::function<void()>& addFigures) {
  int kept = 0;
  for (int i = 0; i < argc; ++i) {
    if (std::strncmp(argv[i], "--rounds=", 9) == 0) {
      rounds = std::max(7, std::atoi(argv[i] + 9));
    } else {
      argv[kept++] = argv[i];
    }
  }
  benchmark::Initialize(&kept, argv);
  if (benchmark::ReportUnrecognizedArguments(kept, argv)) return 2;
  FigureReporter reporter;
  try {
    addFigures();
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "bench: %s\n", problem.what());
    return 1;
  }
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return reporter.hasFailed ? 1 : 0;
}

}  // namespace bench
