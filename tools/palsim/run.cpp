// The commands that play a scenario and show what a run was.
#include <fmt/format.h>

#include <algorithm>

#include "tools/palsim/commands.h"
#include "tools/palsim/run_store.h"
#include "tools/palsim/samples.h"
#include "tools/palsim/scenario/scenario.h"
#include "tools/palsim/scenario/stage.h"
#include "tools/palsim/scenario/values.h"
#include "tools/palsim/session.h"
#include "tools/palsim/timeline/page.h"
#include "tools/palsim/timeline/sound_of_run.h"
#include "tools/palsim/timeline/text.h"
#include "tools/palsim/timeline/timeline.h"
#include "tools/palsim/timeline/trace_events.h"
#include "tools/palsim/usage_error.h"
#include "tools/streams.h"

namespace palsim {
namespace {

void WriteSound(const Timeline& timeline, const sim::FileSystem& files, const std::string& file) {
  RunSound sound;
  tools::WriteOutputInBlocks(file, [&](const tools::WriteBlock& write) {
    sound = WriteSoundOfRun(timeline, files, write);
  });
  for (const std::string& path : sound.missing) {
    tools::PrintError("palsim: {} is left out: the device has no such wave file now\n", path);
  }
  if (!sound.cut_at_ms) return;
  tools::PrintError("palsim: the sound is cut at {} of {}: a WAV file has no room for more\n",
                    TimeText(*sound.cut_at_ms), TimeText(timeline.length_ms));
}

void Show(const RunRecord& run, const sim::FileSystem& files, const TimelineOptions& options) {
  const Timeline timeline = MakeTimeline(run);
  if (options.text) fmt::print("{}", TimelineText(timeline, options.columns));
  if (!options.html.empty()) tools::WriteOutput(options.html, TimelinePage(timeline));
  if (!options.svg.empty()) tools::WriteOutput(options.svg, TimelinePicture(timeline));
  if (!options.trace.empty()) tools::WriteOutput(options.trace, TraceEventsJson(timeline));
  if (!options.wav.empty()) WriteSound(timeline, files, options.wav);
}

std::filesystem::path SampleFor(const Scenario& scenario, const RunOptions& options) {
  if (!options.sample.empty()) return FolderOf(options.sample);
  return SampleFolder(scenario.device.empty() ? NewOptions().sample : scenario.device);
}

Session OpenSession(const Scenario& scenario, const std::filesystem::path& folder,
                    const RunOptions& options) {
  if (!options.fresh) return Session(folder);
  const std::filesystem::path sample = SampleFor(scenario, options);
  const Replace replace = options.force ? Replace::kAny : Replace::kUnedited;
  return {LockForNewDevice(folder, sample, replace), sample};
}

void CheckDevice(const Scenario& scenario, const std::string& device) {
  if (scenario.device.empty() || scenario.device == device) return;
  throw UsageError(fmt::format("{} is for the device {}, and this is {}", scenario.name,
                               scenario.device, device));
}

struct Verdict {
  std::size_t expectations = 0;
  std::size_t failures = 0;
};

Verdict Play(Session& session, const Scenario& scenario) {
  Stage stage(session.device(),
              [](const std::string& message) { tools::PrintError("{}\n", message); });
  stage.Play(scenario);
  return {stage.expectations(), stage.failures()};
}

// The exit status.
int Tell(const Scenario& scenario, const Verdict& verdict, const TimelineOptions& timeline) {
  if (verdict.failures > 0) {
    tools::PrintError("{}: {} of {} expectations do not hold\n", scenario.name, verdict.failures,
                      verdict.expectations);
    return kFailure;
  }
  // Standard output can be the page's, the sound's or the trace's.
  const auto files = {timeline.html, timeline.svg, timeline.wav, timeline.trace};
  const bool is_free = std::ranges::find(files, tools::kStandardStream) == files.end();
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
  Session session = OpenSession(scenario, folder, options);
  CheckDevice(scenario, session.identity().name);
  session.set_title(scenario.title, scenario.about);
  if (options.journal) session.PrintJournal();
  if (options.seed) session.device().ShuffleTurns(*options.seed);
  const Verdict verdict = Play(session, scenario);
  session.Save(true);
  Show(session.record(), session.device().files(), options.timeline);
  return Tell(scenario, verdict, options.timeline);
}

int Run(Session& session, const RunOptions& options) {
  // What waits for a pipe could not be ended by a signal, and the device would not be saved.
  if (options.file == tools::kStandardStream ||
      (std::filesystem::exists(options.file) && !std::filesystem::is_regular_file(options.file))) {
    throw UsageError(options.file + " is no file; 'palsim DEVICE run' also reads pipes");
  }
  const Scenario scenario = ReadScenario(options.file);
  CheckDevice(scenario, session.identity().name);
  const Verdict verdict = Play(session, scenario);
  Show(RunSoFar(session), session.device().files(), options.timeline);
  return Tell(scenario, verdict, options.timeline);
}

int ShowTimeline(const std::filesystem::path& folder, const TimelineOptions& options) {
  Session session(folder, Use::kRead);
  Show(ReadRun(FindRun(folder, options.run)), session.device().files(), options);
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
