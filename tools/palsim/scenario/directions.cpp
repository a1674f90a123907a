// What processes do, and what happens to them from outside.
#include <fmt/format.h>

#include "platform/sim/hardware/hardware.h"
#include "platform/sim/kernel/registry_text.h"
#include "platform/sim/text.h"
#include "tools/palsim/argument.h"
#include "tools/palsim/scenario/journal_line.h"
#include "tools/palsim/scenario/statements.h"
#include "tools/palsim/scenario/values.h"
#include "tools/palsim/usage_error.h"

namespace palsim {
namespace {

constexpr std::uint32_t kLongestWaitMs = 60000;

std::vector<std::string> Arguments(const Filled& filled) {
  std::vector<std::string> arguments;
  for (const Word& word : filled.words("ARGUMENTS")) arguments.push_back(word.text);
  return arguments;
}

sim::Fault PlannedFault(const Filled& filled) {
  sim::Fault fault;
  if (filled.Text("API") != kAnyCall) fault.call = filled.Text("API");
  if (filled.Has("COUNT")) fault.nth = static_cast<unsigned>(ParseNumber(filled.Text("COUNT")));
  if (filled.Has("NUMBER")) {
    fault.error = static_cast<std::uint32_t>(ParseNumber(filled.Text("NUMBER")));
  }
  return fault;
}

// Lets the device run, one unit of its clock after the other, until the journal has a line.
void RunUntil(Stage& stage, const JournalLine& line) {
  std::size_t next = stage.wait_from;
  for (std::uint32_t waited = 0; waited <= kLongestWaitMs; ++waited) {
    stage.device().Advance(waited == 0 ? 0 : 1);
    const auto& entries = stage.journal();
    for (; next < entries.size(); ++next) {
      if (!line.Is(entries[next])) continue;
      stage.wait_from = next + 1;
      return;
    }
  }
  stage.Expect(false, "to see " + line.Description(),
               fmt::format("none within {}", TimeText(kLongestWaitMs)));
}

std::string NameInKey(const ValuePath& path) {
  return path.name.empty() ? "@" : fmt::format("\"{}\"", path.name);
}

}  // namespace

void PlayStarts(Stage& stage, const Filled& filled) {
  stage.StartProcess(filled.Text("PROCESS"));
}

void PlayEnds(Stage& stage, const Filled& filled) {
  stage.EndProcess(filled.Text("PROCESS"), false);
}

void PlayKilled(Stage& stage, const Filled& filled) {
  stage.EndProcess(filled.Text("PROCESS"), true);
}

void PlayCalls(Stage& stage, const Filled& filled) {
  stage.Call(filled.Text("PROCESS"), filled.Text("EXPORT"), Arguments(filled));
}

void PlayRuns(Stage& stage, const Filled& filled) {
  stage.RunProgram(filled.Text("PROCESS"), filled.Text("FILE"), filled.Text("CALL"));
}

void PlayBegins(Stage& stage, const Filled& filled) {
  stage.Begin(filled.Text("PROCESS"), filled.Text("EXPORT"), Arguments(filled),
              filled.Text(filled.Has("CALL") ? "CALL" : "PROCESS"));
}

void PlayWait(Stage& stage, const Filled& filled) {
  stage.device().Advance(ParseTime(filled.words("TIME")));
}

void PlayWaitFor(Stage& stage, const Filled& filled) {
  stage.AwaitCall(filled.Text("CALL"));
}

void PlayWaitUntil(Stage& stage, const Filled& filled) {
  RunUntil(stage, JournalLine(filled));
}

void PlayWaitUntilTaken(Stage& stage, const Filled& filled) {
  RunUntil(stage, JournalLine(sim::Effect::kMutex, filled.Text("MUTEX") + " taken",
                              stage.process(filled.Text("PROCESS")).id()));
}

void PlaySetVolume(Stage& stage, const Filled& filled) {
  const auto volume = static_cast<std::uint32_t>(ParseNumber(filled.Text("NUMBER")));
  stage.device().hardware().audio.levels.volume = volume;
  stage.device().Note(sim::Effect::kAudio, fmt::format("volume 0x{:08X}", volume));
}

void PlaySetGain(Stage& stage, const Filled& filled) {
  const auto gain = static_cast<std::uint32_t>(ParseNumber(filled.Text("NUMBER")));
  stage.device().hardware().audio.levels.gain = gain;
  stage.device().Note(sim::Effect::kAudio, fmt::format("gain {}", gain));
}

void PlaySetValue(Stage& stage, const Filled& filled) {
  const ValuePath path = ParseValuePath(filled.Text("VALUE"));
  const sim::RegistryValue value = ParseData(filled.words("DATA"));
  sim::Registry& registry = stage.device().registry();
  registry.SetRaw(path.key, path.name, value.type, value.data);
  stage.device().Note(sim::Effect::kRegistry,
                      fmt::format("{} {}={}", sim::ToUtf8(registry.Find(path.key)->Path()),
                                  NameInKey(path), sim::ValueText(value)));
}

void PlayDeleteValue(Stage& stage, const Filled& filled) {
  const ValuePath path = ParseValuePath(filled.Text("VALUE"));
  const auto key = stage.device().registry().Find(std::string_view(path.key));
  if (key == nullptr || !key->DeleteValue(sim::ToUtf16(path.name))) {
    throw UsageError("the registry has no " + filled.Text("VALUE"));
  }
  stage.device().Note(sim::Effect::kRegistry,
                      fmt::format("{} {} deleted", sim::ToUtf8(key->Path()), NameInKey(path)));
}

void PlaySignal(Stage& stage, const Filled& filled) {
  const std::string name = filled.Text("EVENT");
  if (!stage.device().SetEvent(name)) throw UsageError("no process has an event " + name + " now");
  stage.device().Advance(0);  // whoever waits for it goes on
}

void PlayWriteFile(Stage& stage, const Filled& filled) {
  const std::string path = filled.Text("PATH");
  const std::string text = filled.Text("TEXT");
  stage.device().files().Write(path, text);
  stage.device().Note(sim::Effect::kFile, fmt::format("{} written: {} bytes", path, text.size()));
}

void PlayRemoveFile(Stage& stage, const Filled& filled) {
  const std::string path = filled.Text("PATH");
  if (!stage.device().files().Remove(path)) throw UsageError("the device has no " + path);
  stage.device().Note(sim::Effect::kFile, path + " removed");
}

void PlayFailCall(Stage& stage, const Filled& filled) {
  stage.device().PlanFault(PlannedFault(filled));
}

void PlayFailEveryCall(Stage& stage, const Filled& filled) {
  sim::Fault fault = PlannedFault(filled);
  fault.from_then_on = true;
  stage.device().PlanFault(fault);
}

void PlayKillAtCall(Stage& stage, const Filled& filled) {
  sim::Fault fault = PlannedFault(filled);
  fault.kill = true;
  stage.device().PlanFault(fault);
}

void PlayNoMoreFaults(Stage& stage, const Filled& /*filled*/) {
  stage.SayWhatWasNotReached();
  stage.device().ClearFaults();
}

}  // namespace palsim
