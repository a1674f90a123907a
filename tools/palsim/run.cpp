// The commands that play a scenario and show what a run was.
#include <fmt/format.h>

#include "tools/palsim/commands.h"
#include "tools/palsim/scenario/scenario.h"
#include "tools/palsim/scenario/stage.h"
#include "tools/palsim/session.h"
#include "tools/palsim/timeline/page.h"
#include "tools/palsim/timeline/sound_of_run.h"
#include "tools/palsim/timeline/text.h"
#include "tools/palsim/timeline/timeline.h"
#include "tools/palsim/usage_error.h"
#include "tools/streams.h"

namespace palsim {
namespace {

void Show(const RunRecord& run, const sim::FileSystem& files, const TimelineOptions& options) {
  const Timeline timeline = MakeTimeline(run);
  if (options.text) fmt::print("{}", TimelineText(timeline));
  if (!options.html.empty()) tools::WriteOutput(options.html, TimelinePage(timeline));
  if (options.wav.empty()) return;
  const RunSound sound = SoundOfRun(timeline, files);
  tools::WriteOutput(options.wav, sound.wav);
  for (const std::string& path : sound.missing) {
    fmt::print(stderr, "palsim: {} is left out: the device has no such wave file now\n", path);
  }
}

void CheckDevice(const Scenario& scenario, const std::string& device) {
  if (scenario.device.empty() || scenario.device == device) return;
  throw UsageError(fmt::format("{} is for the device {}, and this is {}", scenario.name,
                               scenario.device, device));
}

void MakeDeviceFor(const Scenario& scenario, const std::string& sample,
                   const std::filesystem::path& folder) {
  NewOptions options{.force = true, .quiet = true};
  if (!sample.empty()) {
    sim::Device device;  // before the old one is gone
    CheckDevice(scenario, sim::LoadDevice(device, FolderOf(sample)).name);
    options.sample = sample;
  } else if (!scenario.device.empty()) {
    options.sample = scenario.device;
  }
  NewDevice(folder, options);
}

struct Verdict {
  std::size_t expectations = 0;
  std::size_t failures = 0;
};

Verdict Play(Session& session, const Scenario& scenario) {
  Stage stage(session.device(), [](const std::string& message) {
    fmt::print(stderr, "{}\n", tools::Printable(message));
  });
  stage.Play(scenario);
  return {stage.expectations(), stage.failures()};
}

// The exit status.
int Tell(const Scenario& scenario, const Verdict& verdict, const TimelineOptions& timeline) {
  if (verdict.failures > 0) {
    fmt::print(stderr, "{}: {} of {} expectations do not hold\n", scenario.name, verdict.failures,
               verdict.expectations);
    return kFailure;
  }
  // Standard output can be the page's or the sound's.
  const bool is_free =
      timeline.html != tools::kStandardStream && timeline.wav != tools::kStandardStream;
  fmt::print(is_free ? stdout : stderr, "{}: {} expectations hold\n", scenario.name,
             verdict.expectations);
  return kSuccess;
}

// As it would be saved now.
RunRecord RunSoFar(Session& session) {
  RunRecord run = session.record();
  run.entries = session.device().journal().entries();
  run.end_ms = session.device().now_ms();
  return run;
}

}  // namespace

int Run(const std::filesystem::path& folder, const RunOptions& options) {
  const Scenario scenario = ReadScenario(options.file);
  if (options.fresh) MakeDeviceFor(scenario, options.sample, folder);
  Session session(folder);
  CheckDevice(scenario, session.identity().name);
  session.set_title(scenario.title, scenario.about);
  if (options.journal) session.PrintJournal();
  if (options.seed) session.device().ShuffleTurns(*options.seed);
  const Verdict verdict = Play(session, scenario);
  session.Save();
  Show(session.record(), session.device().files(), options.timeline);
  return Tell(scenario, verdict, options.timeline);
}

int Run(Session& session, const RunOptions& options) {
  const Scenario scenario = ReadScenario(options.file);
  CheckDevice(scenario, session.identity().name);
  const Verdict verdict = Play(session, scenario);
  Show(RunSoFar(session), session.device().files(), options.timeline);
  return Tell(scenario, verdict, options.timeline);
}

int ShowTimeline(const std::filesystem::path& folder, const TimelineOptions& options) {
  const std::vector<RunRecord> runs = ReadRuns(folder);
  if (runs.empty()) throw UsageError(folder.string() + " has no run to show");
  Session session(folder);
  Show(runs.back(), session.device().files(), options);
  return kSuccess;
}

int ShowTimeline(Session& session, const TimelineOptions& options) {
  Show(RunSoFar(session), session.device().files(), options);
  return kSuccess;
}

void PrintStatements() {
  for (const StatementForm& form : StatementForms()) {
    fmt::print("  {:<46} {}\n", form.pattern, form.meaning);
  }
}

}  // namespace palsim
