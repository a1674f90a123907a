// What the journal's effects say.
#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "platform/sim/journal.h"
#include "tools/palsim/commands.h"

namespace palsim {
namespace {

using sim::Effect;

struct EffectForm {
  Effect effect;
  std::string_view text;  // words in capitals are filled in
};

constexpr std::array kForms = std::to_array<EffectForm>({
    {Effect::kProcess, "PROCESS started"},
    {Effect::kProcess, "PROCESS started: ARGUMENTS"},
    {Effect::kProcess, "PROCESS attached"},
    {Effect::kProcess, "PROCESS detaches"},
    {Effect::kProcess, "PROCESS ended"},
    {Effect::kProcess, "PROCESS ended with CODE"},
    {Effect::kProcess, "PROCESS killed"},
    {Effect::kCall, "EXPORT(ARGUMENTS)"},
    {Effect::kCall, "EXPORT(ARGUMENTS) = RESULT"},
    {Effect::kRegistry, "KEY created"},
    {Effect::kRegistry, "KEY deleted"},
    {Effect::kRegistry, "KEY flushed"},
    {Effect::kRegistry, "KEY \"NAME\"=DATA"},
    {Effect::kRegistry, "KEY \"NAME\" deleted"},
    {Effect::kRegistry, "PATH imported"},
    {Effect::kFile, "PATH created"},
    {Effect::kFile, "PATH written: COUNT bytes at POSITION"},
    {Effect::kFile, "PATH removed"},
    {Effect::kEvent, "EVENT set"},
    {Effect::kEvent, "EVENT reset"},
    {Effect::kEvent, "EVENT pulsed"},
    {Effect::kMutex, "MUTEX taken"},
    {Effect::kMutex, "MUTEX released"},
    {Effect::kMutex, "MUTEX abandoned"},
    {Effect::kModule, "LIBRARY loaded"},
    {Effect::kModule, "LIBRARY freed"},
    {Effect::kModule, "LIBRARY not found"},
    {Effect::kModule, "ENTRY(NUMBERS)"},
    {Effect::kAudio, "volume 0xNUMBER"},
    {Effect::kAudio, "gain NUMBER"},
    {Effect::kAudio, "sound begins PATH COUNT ms"},
    {Effect::kAudio, "sound begins PATH COUNT ms, looping"},
    {Effect::kAudio, "sound ends PATH"},
    {Effect::kAudio, "sound stops PATH"},
    {Effect::kLed, "LED NUMBER off"},
    {Effect::kLed, "LED NUMBER on"},
    {Effect::kLed, "LED NUMBER blinks"},
    {Effect::kVibration, "preset NUMBER for COUNT ms"},
    {Effect::kDisplay, "rotation DEGREES"},
    {Effect::kPower, "restart, KIND"},
    {Effect::kPower, "restart prepared with 0xNUMBER"},
    {Effect::kPower, "idle timers reset"},
    {Effect::kDriver, "DRIVER REQUEST"},
    {Effect::kDriver, "DRIVER CHANGE"},
    {Effect::kDriver, "keypad reloaded, LAYOUT"},
    {Effect::kTrace, "LINE"},
    {Effect::kDebug, "LINE"},
    {Effect::kExpect, "FILE:LINE held: expected WHAT"},
    {Effect::kExpect, "FILE:LINE held, seen at COUNT ms: expected LINE"},
    {Effect::kExpect, "FILE:LINE failed: expected WHAT; there was WHAT"},
});

}  // namespace

std::vector<std::string_view> EffectNames() {
  std::vector<std::string_view> names;
  for (const EffectForm& form : kForms) {
    const std::string_view name = sim::EffectName(form.effect);
    if (names.empty() || names.back() != name) names.push_back(name);
  }
  return names;
}

void PrintEffects() {
  for (const EffectForm& form : kForms) {
    fmt::print("  {:<10} {}\n", sim::EffectName(form.effect), form.text);
  }
}

}  // namespace palsim
