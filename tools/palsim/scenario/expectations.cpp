#include <fmt/format.h>

#include <algorithm>

#include "platform/sim/hardware/hardware.h"
#include "platform/sim/kernel/registry_text.h"
#include "platform/sim/text.h"
#include "platform/wince.h"
#include "tools/palsim/argument.h"
#include "tools/palsim/names.h"
#include "tools/palsim/scenario/journal_line.h"
#include "tools/palsim/scenario/statements.h"
#include "tools/palsim/scenario/values.h"
#include "tools/palsim/usage_error.h"

namespace palsim {
namespace {

std::string Found(const std::optional<CallOutcome>& outcome) {
  return outcome ? outcome->result : "no result: its process was killed";
}

// As an out-parameter is shown.
std::string AnswerText(const sim::RegistryValue& data) {
  if (const auto number = sim::DwordOf(data)) return NumberText(*number);
  if (data.type != REG_SZ) return HexText(data.data);
  std::u16string text = sim::UnitsOf(data.data);
  return QuotedText(std::vector<WCHAR>(text.begin(), text.end()));
}

const sim::RegistryValue* FindValue(Stage& stage, const Filled& filled) {
  const ValuePath path = ParseValuePath(filled.Text("VALUE"));
  return stage.device().registry().FindValue(path.key, path.name);
}

// Whose line it has to be, where the statement says so.
std::optional<std::uint32_t> ProcessOf(Stage& stage, const Filled& filled) {
  if (!filled.Has("PROCESS")) return std::nullopt;
  return stage.ProcessId(filled.Text("PROCESS"));
}

// The lines of one effect from a position on, for a message: the first eight at most.
std::string LinesFrom(const Stage& stage, std::size_t from, sim::Effect effect) {
  constexpr std::size_t kMost = 8;
  std::vector<std::string> lines;
  for (std::size_t index = from; index < stage.journal().size(); ++index) {
    const sim::JournalEntry& entry = stage.journal()[index];
    if (entry.effect != effect) continue;
    lines.push_back(fmt::format("\n    {:>9} p{} {}", TimeText(stage.TimeOf(entry)),
                                entry.process_id, entry.text));
  }
  if (lines.empty()) return fmt::format("no {} line", sim::EffectName(effect));
  std::string text = lines.size() > kMost ? fmt::format("the first {} of {}:", kMost, lines.size())
                                          : std::string("this alone:");
  for (std::size_t index = 0; index < std::min(kMost, lines.size()); ++index) text += lines[index];
  return text;
}

// When a line must have come, where the statement says so.
std::optional<std::uint64_t> TimeWanted(const Stage& stage, const Filled& filled) {
  if (filled.Has("DELAY")) return stage.matched_ms + ParseTime(filled.words("DELAY"));
  if (filled.Has("TIME")) return ParseTime(filled.words("TIME"));
  return std::nullopt;
}

std::size_t Count(const Stage& stage, const JournalLine& line) {
  const auto& entries = stage.journal();
  return static_cast<std::size_t>(
      std::count_if(entries.begin() + static_cast<std::ptrdiff_t>(stage.look_from), entries.end(),
                    [&](const sim::JournalEntry& entry) { return line.Is(entry); }));
}

}  // namespace

void ExpectReturned(Stage& stage, const Filled& filled) {
  const std::string name = filled.Text("CALL");
  const std::uint32_t wanted = ParseResult(filled.Text("RESULT"));
  const std::optional<CallOutcome>& outcome = stage.outcome(name);
  stage.Expect(outcome && !outcome->restart && outcome->code == wanted,
               fmt::format("{} to return {}", name, filled.Text("RESULT")), Found(outcome));
}

void ExpectKilled(Stage& stage, const Filled& filled) {
  const std::string name = filled.Text("CALL");
  const std::optional<CallOutcome>& outcome = stage.outcome(name);
  stage.Expect(!outcome || outcome->restart, name + " to be killed", Found(outcome));
}

void ExpectArgument(Stage& stage, const Filled& filled) {
  const std::string name = filled.Text("CALL");
  const auto number = static_cast<std::size_t>(ParseNumber(filled.Text("COUNT")));
  const std::string wanted = AnswerText(ParseData(filled.words("DATA")));
  const std::string expected = fmt::format("argument {} of {} to be {}", number, name, wanted);
  const std::optional<CallOutcome>& outcome = stage.outcome(name);
  if (!outcome) return stage.Expect(false, expected, Found(outcome));
  const auto answer = std::ranges::find(outcome->answers, number, &Answer::argument);
  const bool is_out = answer != outcome->answers.end();
  stage.Expect(is_out && answer->text == wanted, expected,
               is_out ? answer->text : "no out-parameter in this place");
}

void ExpectValue(Stage& stage, const Filled& filled) {
  const sim::RegistryValue wanted = ParseData(filled.words("DATA"));
  const sim::RegistryValue* value = FindValue(stage, filled);
  stage.Expect(value != nullptr && value->type == wanted.type && value->data == wanted.data,
               fmt::format("{} to be {}", filled.Text("VALUE"), sim::ValueText(wanted)),
               value != nullptr ? sim::ValueText(*value) : "no such value");
}

void ExpectNoValue(Stage& stage, const Filled& filled) {
  const sim::RegistryValue* value = FindValue(stage, filled);
  stage.Expect(value == nullptr, "no " + filled.Text("VALUE"),
               value != nullptr ? sim::ValueText(*value) : "none");
}

void ExpectVolume(Stage& stage, const Filled& filled) {
  const auto wanted = static_cast<std::uint32_t>(ParseNumber(filled.Text("NUMBER")));
  const std::uint32_t volume = stage.device().hardware().audio.levels.volume;
  stage.Expect(volume == wanted, fmt::format("the volume to be 0x{:08X}", wanted),
               fmt::format("0x{:08X}", volume));
}

void ExpectGain(Stage& stage, const Filled& filled) {
  const auto wanted = static_cast<std::uint32_t>(ParseNumber(filled.Text("NUMBER")));
  const std::uint32_t gain = stage.device().hardware().audio.levels.gain;
  stage.Expect(gain == wanted, fmt::format("the gain to be {}", wanted), fmt::format("{}", gain));
}

void ExpectNoLine(Stage& stage, const Filled& filled) {
  const JournalLine line(filled);
  stage.Expect(Count(stage, line) == 0, "no " + line.Description(),
               LinesFrom(stage, stage.look_from, line.effect()));
}

void ExpectLineCount(Stage& stage, const Filled& filled) {
  const JournalLine line(filled);
  const auto wanted = static_cast<std::size_t>(ParseNumber(filled.Text("COUNT")));
  const std::size_t count = Count(stage, line);
  stage.Expect(count == wanted, fmt::format("{} times {}", wanted, line.Description()),
               fmt::format("{} times", count));
}

void ExpectLine(Stage& stage, const Filled& filled) {
  const JournalLine line(filled, ProcessOf(stage, filled));
  const std::optional<std::uint64_t> time = TimeWanted(stage, filled);
  const auto& entries = stage.journal();
  const auto from = entries.begin() + static_cast<std::ptrdiff_t>(stage.position);
  const auto entry = std::find_if(
      from, entries.end(), [&](const sim::JournalEntry& candidate) { return line.Is(candidate); });
  if (entry == entries.end()) {
    return stage.Expect(false, line.Description(), LinesFrom(stage, stage.position, line.effect()));
  }
  stage.position = static_cast<std::size_t>(entry - entries.begin()) + 1;
  stage.matched_ms = stage.TimeOf(*entry);
  const std::string when = time ? " at " + TimeText(*time) : "";
  stage.Expect(!time || stage.matched_ms == *time, line.Description() + when,
               "it at " + TimeText(stage.matched_ms), stage.matched_ms);
}

void LookFromHere(Stage& stage, const Filled& /*filled*/) {
  stage.look_from = stage.position = stage.journal().size();
  stage.matched_ms = stage.run_time_ms();
}

void LookFromTheStart(Stage& stage, const Filled& /*filled*/) {
  stage.look_from = stage.position = stage.journal_start();
  stage.matched_ms = 0;
}

}  // namespace palsim
