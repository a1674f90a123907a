// Runs the benchmarks and prints what matters of them: the library's time against the time of the
// bare platform calls, measured in the same run. Rows come in pairs named "what/library" and
// "what/bare".
#include <benchmark/benchmark.h>

#include <cstdio>
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
    std::printf("%-44s %12s %12s %8s\n", "", "library", "bare calls", "ratio");
    for (const auto& [name, sides] : times_) {
      if (!sides.contains("library") || !sides.contains("bare")) continue;
      const double library = sides.at("library");
      const double bare = sides.at("bare");
      std::printf("%-44s %9.0f ns %9.0f ns %8.2f\n", name.c_str(), library, bare, library / bare);
    }
  }

 private:
  std::map<std::string, std::map<std::string, double>> times_;
};

}  // namespace

int main(int argc, char** argv) {
  // Repetitions of the two sides take turns, so that both see the same disturbances.
  std::vector<char*> arguments(argv, argv + argc);
  std::string repetitions = "--benchmark_repetitions=9";
  std::string interleaving = "--benchmark_enable_random_interleaving=true";
  std::string time = "--benchmark_min_time=0.05";
  for (std::string* option : {&repetitions, &interleaving, &time}) {
    arguments.insert(arguments.begin() + 1, option->data());
  }
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return 0;
}
