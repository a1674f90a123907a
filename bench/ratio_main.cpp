// Runs the benchmarks and prints what matters of them: the library's time without its trace lines
// against the time of the bare platform calls, measured in the same run. Benchmarks come in groups
// named "what/library", "what/untraced" and "what/bare".
#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace {

class RatioReporter : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context& /*context*/) override { return true; }

  // The shortest repetition: what disturbs a run only makes it longer.
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration) continue;
      const std::string& name = run.run_name.function_name;
      const std::size_t slash = name.rfind('/');
      double& best = times_[name.substr(0, slash)][name.substr(slash + 1)];
      const double time = run.GetAdjustedRealTime();
      if (best == 0 || time < best) best = time;
    }
  }

  void Finalize() override {
    std::vector<Line> lines;
    for (const auto& [name, sides] : times_) {
      if (sides.contains("library") && sides.contains("bare")) lines.push_back(LineOf(name, sides));
    }
    std::ranges::sort(lines, std::greater<>(), &Line::ratio);
    fmt::print("{:48} {:>12} {:>12} {:>12} {:>8}\n", "", "library", "no lines", "bare calls",
               "ratio");
    for (const Line& line : lines) {
      fmt::print("{:48} {:9.0f} ns {:9.0f} ns {:9.0f} ns {:8.2f}\n", line.name, line.library,
                 line.untraced, line.bare, line.ratio);
    }
  }

 private:
  using Sides = std::map<std::string, double>;

  struct Line {
    std::string name;
    double library;
    double untraced;
    double bare;
    double ratio;
  };

  // Where there is no build without trace lines, the bare calls have those lines too.
  static Line LineOf(const std::string& name, const Sides& sides) {
    const double library = sides.at("library");
    const double bare = sides.at("bare");
    const double untraced = sides.contains("untraced") ? sides.at("untraced") : library;
    return {name, library, untraced, bare, untraced / bare};
  }

  std::map<std::string, Sides> times_;
};

}  // namespace

int main(int argc, char** argv) {
  // Repetitions of the two sides take turns, so that both see the same disturbances.
  std::vector<char*> arguments(argv, argv + argc);
  std::string repetitions = "--benchmark_repetitions=15";
  std::string interleaving = "--benchmark_enable_random_interleaving=true";
  std::string time = "--benchmark_min_time=0.004";
  for (std::string* option : {&repetitions, &interleaving, &time}) {
    arguments.insert(arguments.begin() + 1, option->data());
  }
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return 0;
}
