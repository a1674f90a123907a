// The commands that stand alone, without a device in a folder.
#include "tools/palsim/command_line.h"

namespace palsim {
namespace {

constexpr const char* kServe = R"(
Each line of standard input is a JSON-RPC 2.0 request, and is answered by a line
of standard output (docs/test-bench.md). The end of the input ends the device,
which lives in memory alone.
)";

constexpr const char* kFacts = R"(
palcheck.exe writes FILE on a handheld. The same questions are put to a new
simulated device. Each fact that the two answer otherwise is listed; a fact
marked [chosen] is one that no document settles. What the exports of the library
answer depends on the model and on its settings, not on the platform: it is
counted apart.

Exit status: 0 every fact is the same, 1 one is not, or is not in FILE, 2 FILE is
not from palcheck.exe or cannot be read.
)";

}  // namespace

void CommandLine::AddTest() {
  auto* command = AddAlone("test", "Play many scenarios on copies of many devices",
                           [this] { return Test(test_); });
  command->add_option("PATH", test_.paths, "Scenarios, and folders of them; - is standard input")
      ->required();
  command
      ->add_option("--device", test_.devices,
                   "A sample, or a device's folder; without it every sample")
      ->expected(1)
      ->take_all();
  command->add_option("--seeds", test_.seeds,
                      "A-B: play each once for each seed, which says how threads change turns");
  command->add_option("--jobs", test_.jobs, "How many at once; without it as many as processors")
      ->check(CLI::Range(1, 256));
  command->add_option("--shard", test_.shard, "I/N: only this machine's part, from 1/N to N/N")
      ->capture_default_str();
  command->add_option("--timeout", test_.most_seconds, "The most seconds for one")
      ->check(CLI::Range(1, 86400))
      ->capture_default_str();
  command->add_option("--junit", test_.junit, "Write a JUnit report; - is standard output");
  command->add_option("--json", test_.json, "Write a report as JSON; - is standard output");
}

void CommandLine::AddFacts() {
  auto* command = AddAlone("facts", "Compare a handheld with the simulated device",
                           [this] { return CompareFacts(facts_); });
  command->add_option("FILE", facts_.file, "\\palcheck.txt of the handheld; - is standard input")
      ->required();
  command->add_option("--device", facts_.device, "A sample device, or a device's folder")
      ->capture_default_str();
  command->add_flag("--library", facts_.library, "List also what the exports answer otherwise");
  command->footer(kFacts);
}

void CommandLine::AddServe() {
  auto* command = AddAlone("serve", "Serve a device to programs, such as a test bench",
                           [this] { return Serve(serve_); });
  command->add_flag("--stdio", serve_.stdio, "On standard input and output")->required();
  command->add_option("--device", serve_.device, "A sample device, or a device's folder")
      ->capture_default_str();
  command->footer(kServe);
}

void CommandLine::AddExplore() {
  auto* command = AddAlone("explore", "Search for runs in which a property does not hold", [this] {
    if (!merged_.empty()) return MergeReports(merged_, explore_.out);
    return Explore(explore_);
  });
  command->add_option("--device", explore_.world.device,
                      "A sample device, or a device's folder; else a sample by each seed");
  command->add_option("--seeds", explore_.seeds, "Which worlds: A-B")->capture_default_str();
  command->add_option("--steps", explore_.world.steps, "Of a world")
      ->check(CLI::Range(1, 100000))
      ->capture_default_str();
  command->add_option("--processes", explore_.world.processes, "Of a world, at most")
      ->check(CLI::Range(1, 8))
      ->capture_default_str();
  command->add_option("--jobs", explore_.jobs, "How many at once; 0: one for each processor")
      ->check(CLI::Range(0, 1024))
      ->capture_default_str();
  command->add_option("--shard", explore_.shard, "The part I of N of the seeds")
      ->capture_default_str();
  constexpr std::uint32_t kYear = 365 * 24 * 60 * 60;
  const std::map<std::string, std::uint32_t> units{{"s", 1}, {"m", 60}, {"h", 3600}};
  command->add_option("--for", explore_.seconds, "How long, such as 90s, 5m or 2h")
      ->transform(CLI::AsNumberWithUnit(units).description("TIME"))
      ->check(CLI::Range(1U, kYear).description(""));
  command->add_option("--faults", explore_.world.faults, "How often: none, rare or often")
      ->check(CLI::IsMember({"none", "rare", "often"}).description(""))
      ->capture_default_str();
  command->add_option("--program", explore_.world.program,
                      "A shared library that takes part as a process");
  command->add_option("--out", explore_.out, "A new folder for findings and report");
  command->add_option("--merge", merged_, "Add up the reports in these folders instead");
}

}  // namespace palsim
