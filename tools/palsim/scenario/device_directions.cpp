// What happens to the device itself, and which of its properties are checked.
#include <fmt/format.h>

#include <optional>

#include "platform/sim/hardware/hardware.h"
#include "platform/sim/hardware/one_wire.h"
#include "tools/palsim/argument.h"
#include "tools/palsim/keypad_layout.h"
#include "tools/palsim/scenario/statements.h"
#include "tools/palsim/scenario/values.h"
#include "tools/palsim/usage_error.h"

namespace palsim {
namespace {

std::uint16_t ParameterId(const Filled& filled) {
  return static_cast<std::uint16_t>(ParseNumber(filled.Text("ID")));
}

// As [parameters] of a device's description has it.
sim::QueryAnswer ParameterOf(const Words& words) {
  if (words.size() == 1 && words[0].quoted) return sim::TextAnswer(words[0].text);
  return {.bytes = ParseData(words).data};
}

// The state is there before the change is told.
void MoveButton(Stage& stage, const Filled& filled, bool is_held) {
  sim::Device& device = stage.device();
  const auto button = static_cast<LONG>(ParseNumber(filled.Text("NUMBER")));
  const std::optional<ButtonEvents> events = FindEventsOfButton(device.registry(), button);
  if (!events) throw UsageError(fmt::format("the keypad signals no event for button {}", button));
  const bool has_state = device.SetEvent(events->state, is_held);
  if (!device.SetEvent(events->delta) && !has_state) {
    throw UsageError(
        fmt::format("no process has an event {} or {} now", events->delta, events->state));
  }
  device.Advance(0);  // whoever waits for it goes on
}

}  // namespace

void PlayPress(Stage& stage, const Filled& filled) {
  MoveButton(stage, filled, true);
}

void PlayRelease(Stage& stage, const Filled& filled) {
  MoveButton(stage, filled, false);
}

void PlayRestart(Stage& stage, const Filled& filled) {
  stage.Restart(filled.Text("KIND") == "cold" ? sim::RestartKind::kCold : sim::RestartKind::kWarm);
}

void PlayDock(Stage& stage, const Filled& filled) {
  for (const auto& driver : stage.device().hardware().drivers) {
    auto* const bus = dynamic_cast<sim::OneWireBus*>(driver.get());
    if (bus == nullptr) continue;
    bus->set_attached(filled.Text("DOCK") == "attached");
    stage.device().Note(sim::Effect::kDriver, "dock " + filled.Text("DOCK"));
  }
}

void PlaySetParameter(Stage& stage, const Filled& filled) {
  stage.device().hardware().parameters[ParameterId(filled)] = ParameterOf(filled.words("DATA"));
}

void PlayNoParameter(Stage& stage, const Filled& filled) {
  stage.device().hardware().parameters.erase(ParameterId(filled));
}

void PlayNoDriver(Stage& stage, const Filled& filled) {
  std::erase_if(stage.device().hardware().drivers,
                [&](const auto& driver) { return driver->name() == filled.Text("DRIVER"); });
}

void PlayNoLibrary(Stage& stage, const Filled& filled) {
  stage.device().RemoveModule(filled.Text("LIBRARY"));
}

void PlayMoveBytes(Stage& stage, const Filled& filled) {
  stage.device().PlanFault(
      {.call = filled.Text("API"),
       .nth = static_cast<unsigned>(ParseNumber(filled.Text("COUNT"))),
       .transfers = static_cast<std::uint32_t>(ParseNumber(filled.Text("NUMBER")))});
}

void PlayChangeTurns(Stage& stage, const Filled& filled) {
  stage.ChangeTurns(static_cast<std::uint32_t>(ParseNumber(filled.Text("NUMBER"))));
}

void PlayCheckProperties(Stage& stage, const Filled& /*filled*/) {
  stage.WatchFor(Properties());
}

void PlayCheckProperty(Stage& stage, const Filled& filled) {
  stage.WatchFor({&FindProperty(filled.Text("PROPERTY")), 1});
}

}  // namespace palsim
