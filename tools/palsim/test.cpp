// Plays many scenarios on many devices at once, and reports how each went.
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "platform/sim/device_folder.h"
#include "tools/palsim/commands.h"
#include "tools/palsim/device_lock.h"
#include "tools/palsim/jobs.h"
#include "tools/palsim/names.h"
#include "tools/palsim/samples.h"
#include "tools/palsim/scenario/stage.h"
#include "tools/palsim/test_plan.h"
#include "tools/palsim/test_report.h"
#include "tools/palsim/usage_error.h"
#include "tools/streams.h"

namespace palsim {
namespace {

std::string CommandToRepeat(const TestCase& test, const std::string& program) {
  std::string command = fmt::format("{} /tmp/again run {} --new --sample {}", Quoted(program),
                                    Quoted(test.file), Quoted(test.device));
  if (test.seed) command += fmt::format(" --seed {}", *test.seed);
  return tools::Printable(command);
}

// How the journal ended.
void ShowEnd(Json& report, sim::Device& device) {
  constexpr std::ptrdiff_t kLines = 50;
  const auto& entries = device.journal().entries();
  const auto shown = std::min(kLines, std::ssize(entries));
  for (auto entry = entries.end() - shown; entry != entries.end(); ++entry) {
    report["journal"].push_back(tools::Printable(sim::ToLine(*entry)));
  }
}

// In a process of its own.
Json Play(const TestCase& test) {
  Json report{{"result", "passed"}, {"messages", Json::array()}};
  const auto say = [&report](std::string_view message) {
    report["messages"].push_back(tools::Printable(message));
  };
  sim::Device device;
  try {
    LoadLocked(device, FolderOf(test.device));
    if (test.seed) device.ShuffleTurns(*test.seed);
    Stage stage(device, say);
    stage.Play(*test.scenario);
    report["expectations"] = stage.expectations();
    if (stage.failures() > 0) report["result"] = "failed";
  } catch (const std::exception& error) {
    say(error.what());
    report["result"] = "error";
  }
  if (report["result"] != "passed") ShowEnd(report, device);
  return report;
}

Json HeadOf(const TestCase& test) {
  Json head{{"scenario", tools::Printable(test.file)}, {"device", tools::Printable(test.device)}};
  if (test.seed) head["seed"] = *test.seed;
  head["result"] = "skipped";
  head["seconds"] = 0.0;
  if (test.skipped) head["messages"] = {"it is for the device " + test.scenario->device};
  return head;
}

// A line that stands for what is done, and makes room for the next.
class Progress {
 public:
  explicit Progress(std::size_t count) : count_(count), shown_(isatty(STDERR_FILENO) != 0) {}
  ~Progress() {
    if (shown_) std::fputs(fmt::format("\r{:60}\r", "").c_str(), stderr);
  }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void Count(bool failed) {
    failures_ += failed ? 1 : 0;
    if (shown_)
      std::fputs(fmt::format("\r{} of {}, {} failed", ++done_, count_, failures_).c_str(), stderr);
  }

 private:
  std::size_t count_;
  bool shown_;
  std::size_t done_ = 0;
  std::size_t failures_ = 0;
};

Json PlayAll(const std::vector<TestCase>& cases, const TestOptions& options) {
  std::vector<Json> reports;
  std::vector<std::size_t> played;  // all but those that are skipped
  for (std::size_t index = 0; index < cases.size(); ++index) {
    reports.push_back(HeadOf(cases[index]));
    if (!cases[index].skipped) played.push_back(index);
  }
  Progress progress(played.size());
  const unsigned at_once = options.jobs > 0 ? options.jobs : ProcessorCount();
  RunJobs(
      {.count = played.size(), .at_once = at_once, .most_seconds = options.most_seconds},
      [&](std::size_t job) { return Play(cases[played[job]]).dump(); },
      [&](std::size_t job, const JobEnd& end) {
        Json& report = reports[played[job]];
        report.update(end.error.empty() ? Json::parse(end.answer)
                                        : Json{{"result", "error"}, {"messages", {end.error}}});
        report["seconds"] = end.seconds;
        const bool passed = report["result"] == "passed";
        if (!passed) report["again"] = CommandToRepeat(cases[played[job]], options.program);
        progress.Count(!passed);
      });
  return MakeReport(std::move(reports));
}

// Where a file cannot be written, this is said before hours of work.
void CheckOutputs(const TestOptions& options) {
  const auto place = [](const std::string& file) {
    return std::filesystem::weakly_canonical(file);
  };
  if (!options.junit.empty() && place(options.junit) == place(options.json)) {
    throw UsageError("--junit and --json name the same output");
  }
  for (const std::string& file : {options.junit, options.json}) {
    const std::filesystem::path folder = std::filesystem::path(file).parent_path();
    if (!folder.empty() && !std::filesystem::is_directory(folder)) {
      throw UsageError(fmt::format("{}: there is no folder {}", file, folder.string()));
    }
    if (std::filesystem::is_directory(file)) throw UsageError(file + " is a folder");
  }
}

}  // namespace

int Test(const TestOptions& options) {
  CheckOutputs(options);
  const Json report = PlayAll(PlanTest(options), options);
  const bool is_free =
      options.junit != tools::kStandardStream && options.json != tools::kStandardStream;
  fmt::print(is_free ? stdout : stderr, "{}", SummaryText(report));
  if (!options.junit.empty()) tools::WriteOutput(options.junit, JUnitText(report));
  if (!options.json.empty()) tools::WriteOutput(options.json, report.dump(2) + "\n");
  return report["failed"] == 0 && report["errors"] == 0 ? kSuccess : kFailure;
}

}  // namespace palsim
