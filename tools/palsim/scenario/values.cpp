#include "tools/palsim/scenario/values.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>

#include "platform/sim/device.h"
#include "platform/sim/hardware/leds.h"
#include "platform/sim/kernel/faults.h"
#include "platform/sim/text.h"
#include "platform/wince.h"
#include "tools/palsim/argument.h"
#include "tools/palsim/engine_parts.h"
#include "tools/palsim/explore/property.h"
#include "tools/palsim/export_call.h"
#include "tools/palsim/names.h"

namespace palsim {
namespace {

// As long as the device's tick counter counts. One more is a wait without end.
constexpr std::int64_t kLongestTime = INFINITE - 1LL;

void CheckExport(const Filled& filled) {
  std::vector<std::string> arguments;
  for (const Word& word : filled.words("ARGUMENTS")) arguments.push_back(word.text);
  CheckCall(filled.Text("EXPORT"), arguments);
}

void CheckEffect(const Filled& filled) {
  const std::string name = filled.Text("EFFECT");
  const std::optional<sim::Effect> effect = sim::EffectFromName(name);
  if (effect == sim::Effect::kExpect) throw UsageError("of an expectation nothing is expected");
  if (effect) return;
  throw UsageError("'" + name +
                   "' is no effect in the journal, and as a whole the line is no other statement; "
                   "'palsim --statements' lists them");
}

void CheckPlatformCall(const Filled& filled) {
  const std::string name = filled.Text("API");
  if (name != kAnyCall && !sim::CallFromName(name)) throw UsageError(name + " is no platform call");
}

void CheckPath(const Filled& filled) {
  const std::string path = filled.Text("PATH");
  if (path.starts_with('\\') && sim::FileSystem::IsPathAllowed(path)) return;
  throw UsageError("'" + path + "' is no path of the device, such as \\Windows\\name");
}

void CheckCount(const Filled& filled) {
  const std::int64_t count = ParseNumber(filled.Text("COUNT"));
  constexpr std::int64_t kMost = 1000000;
  if (count < 1 || count > kMost) throw UsageError("a count is a number from 1 up");
}

void CheckLight(const Filled& filled) {
  const std::string light = filled.Text("LIGHT");
  if (!sim::LedStateFromName(light)) throw UsageError(light + " is not off, on or blink");
}

void CheckEnginePart(const Filled& filled) {
  const std::string name = filled.Text("PART");
  const auto* const part = std::ranges::find(kEngineParts, name, &EnginePart::name);
  if (part == kEngineParts.end()) {
    throw UsageError(name + " is not the engine's power, scanning, operation or trigger");
  }
  const std::string state = filled.Text("STATE");
  if (std::ranges::find(part->words, state) != part->words.end()) return;
  throw UsageError(
      fmt::format("{} is never {}, but {}", name, state, fmt::join(part->words, " or ")));
}

void CheckDock(const Filled& filled) {
  const std::string dock = filled.Text("DOCK");
  if (dock != "attached" && dock != "taken") throw UsageError("a dock is attached or taken");
}

void CheckParameter(const Filled& filled) {
  if (ParseNumber(filled.Text("ID")) >> 16 == 0) return;
  throw UsageError("a parameter has a number from 0 to 0xFFFF");
}

void CheckRestartKind(const Filled& filled) {
  const std::string kind = filled.Text("KIND");
  if (kind != "warm" && kind != "cold") throw UsageError("a restart is warm or cold");
}

// What is checked of a word in capitals.
struct ValueCheck {
  std::string_view name;
  void (*check)(const Filled& filled);
};

constexpr std::array kChecks{
    ValueCheck{"TIME",
               [](const Filled& filled) { static_cast<void>(ParseTime(filled.words("TIME"))); }},
    ValueCheck{"DELAY",
               [](const Filled& filled) { static_cast<void>(ParseTime(filled.words("DELAY"))); }},
    ValueCheck{"EXPORT", &CheckExport},
    ValueCheck{
        "VALUE",
        [](const Filled& filled) { static_cast<void>(ParseValuePath(filled.Text("VALUE"))); }},
    ValueCheck{"DATA",
               [](const Filled& filled) { static_cast<void>(ParseData(filled.words("DATA"))); }},
    ValueCheck{"RESULT",
               [](const Filled& filled) { static_cast<void>(ParseResult(filled.Text("RESULT"))); }},
    ValueCheck{"NUMBER",
               [](const Filled& filled) { static_cast<void>(ParseNumber(filled.Text("NUMBER"))); }},
    ValueCheck{"COUNT", &CheckCount},
    ValueCheck{"EFFECT", &CheckEffect},
    ValueCheck{"API", &CheckPlatformCall},
    ValueCheck{"PATH", &CheckPath},
    ValueCheck{"LIGHT", &CheckLight},
    ValueCheck{"PART", &CheckEnginePart},
    ValueCheck{"KIND", &CheckRestartKind},
    ValueCheck{"DOCK", &CheckDock},
    ValueCheck{"ID", &CheckParameter},
    ValueCheck{
        "PROPERTY",
        [](const Filled& filled) { static_cast<void>(FindProperty(filled.Text("PROPERTY"))); }},
};

sim::RegistryValue Bytes(const Words& words) {
  sim::RegistryValue value{.name = {}, .type = REG_BINARY, .data = {}};
  for (std::size_t index = 1; index < words.size(); ++index) {
    const std::string& text = words[index].text;
    std::uint8_t byte = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), byte, 16);
    if (error != std::errc() || end != text.data() + text.size()) {
      throw UsageError("'" + text + "' is no byte such as 0A");
    }
    value.data.push_back(byte);
  }
  return value;
}

}  // namespace

void CheckValues(const Filled& filled) {
  for (const auto& [name, words] : filled.parts()) {
    const auto* const row = std::ranges::find(kChecks, name, &ValueCheck::name);
    if (row != kChecks.end()) row->check(filled);
  }
}

std::uint32_t ParseTime(const Words& words) {
  const bool in_seconds = words.at(1).text == "s";
  std::int64_t time = -1;
  if (in_seconds || words.at(1).text == "ms") time = ParseNumber(words.at(0).text);
  if (in_seconds && time > 0) time *= 1000;
  if (time >= 0 && time <= kLongestTime) return static_cast<std::uint32_t>(time);
  throw UsageError(
      fmt::format("'{}' is no time of 49 days at most (use 120 ms or 2 s)", Joined(words)));
}

std::string TimeText(std::uint64_t ms) {
  return ms >= 1000 && ms % 1000 == 0 ? fmt::format("{} s", ms / 1000) : MomentText(ms);
}

std::string MomentText(std::uint64_t ms) {
  if (ms < 10000) return fmt::format("{} ms", ms);
  return fmt::format("{}.{:03} s", ms / 1000, ms % 1000);
}

ValuePath ParseValuePath(const std::string& text) {
  const std::size_t last = text.find_last_of('\\');
  std::u16string path = sim::ToUtf16(text);
  std::u16string_view rest = path;
  const sim::Registry roots;
  if (last == std::string::npos || roots.TakeRoot(rest) == nullptr) {
    throw UsageError("'" + text + "' is no registry value, such as HKLM\\Software\\Key\\Name");
  }
  return {text.substr(0, last), text.substr(last + 1)};
}

sim::RegistryValue ParseData(const Words& words) {
  if (!words.empty() && !words[0].quoted && words[0].text == "hex") return Bytes(words);
  if (words.size() != 1) {
    throw UsageError("data is a number, a \"text\", or bytes such as hex 0A 01");
  }
  if (words[0].quoted) {
    return {.name = {}, .type = REG_SZ, .data = sim::StringData(sim::ToUtf16(words[0].text))};
  }
  const auto number = static_cast<std::uint32_t>(ParseNumber(words[0].text));
  return {.name = {}, .type = REG_DWORD, .data = sim::DwordData(number)};
}

}  // namespace palsim
