// What is expected of the device itself, whatever the journal says: LEDs, scan engine, screen, boot
// option, USB, keypad, and its restarts.
#include <fmt/format.h>

#include <algorithm>

#include "platform/sim/hardware/configuration_driver.h"
#include "platform/sim/hardware/hardware.h"
#include "platform/sim/hardware/usb_function_bus.h"
#include "tools/palsim/argument.h"
#include "tools/palsim/engine_parts.h"
#include "tools/palsim/keypad_layout.h"
#include "tools/palsim/scenario/statements.h"
#include "tools/palsim/usage_error.h"

namespace palsim {
namespace {

constexpr const char* kNone = "none";

std::uint32_t NumberOf(const Filled& filled) {
  return static_cast<std::uint32_t>(ParseNumber(filled.Text("NUMBER")));
}

// Throws UsageError where the device has no such driver.
template <class DriverType>
const DriverType& DriverOf(Stage& stage, std::string_view what) {
  for (const auto& driver : stage.device().hardware().drivers) {
    if (const auto* found = dynamic_cast<const DriverType*>(driver.get())) return *found;
  }
  throw UsageError(fmt::format("the device has no {}", what));
}

void ExpectText(Stage& stage, std::string_view what, std::string_view wanted,
                std::string_view found) {
  stage.Expect(wanted == found, fmt::format("{} to be {}", what, wanted), std::string(found));
}

void ExpectClient(Stage& stage, const Filled& filled, std::string_view what,
                  const std::string& client) {
  ExpectText(stage, what, filled.Text("CLIENT"), client.empty() ? kNone : client);
}

const sim::UsbFunctionBus& Bus(Stage& stage) {
  return DriverOf<sim::UsbFunctionBus>(stage, "USB function bus");
}

}  // namespace

void ExpectLed(Stage& stage, const Filled& filled) {
  const std::uint32_t number = NumberOf(filled);
  const auto state = stage.device().hardware().leds.State(number);
  if (!state) throw UsageError(fmt::format("the device has no LED {}", number));
  ExpectText(stage, fmt::format("LED {}", number), filled.Text("LIGHT"), sim::LedStateName(*state));
}

void ExpectEngine(Stage& stage, const Filled& filled) {
  const auto& part = *std::ranges::find(kEngineParts, filled.Text("PART"), &EnginePart::name);
  const auto& driver = DriverOf<sim::ScanDriver>(stage, "scan engine");
  ExpectText(stage, fmt::format("the engine's {}", part.name), filled.Text("STATE"),
             part.StateIn(driver.state()));
}

void ExpectRotation(Stage& stage, const Filled& filled) {
  const std::uint32_t code = stage.device().hardware().display.orientation();
  const auto* const rotation = std::ranges::find(sim::kRotations, code, &sim::Rotation::code);
  ExpectText(stage, "the rotation", fmt::format("{}", NumberOf(filled)),
             rotation == sim::kRotations.end() ? fmt::format("no angle, code {}", code)
                                               : fmt::format("{}", rotation->degrees));
}

void ExpectBootOption(Stage& stage, const Filled& filled) {
  const auto& driver = DriverOf<sim::ConfigurationDriver>(stage, "configuration driver");
  ExpectText(stage, "the boot option", fmt::format("{}", NumberOf(filled)),
             fmt::format("{}", driver.boot_option()));
}

void ExpectUsbClient(Stage& stage, const Filled& filled) {
  ExpectClient(stage, filled, "the USB client", Bus(stage).current_client());
}

void ExpectDefaultUsbClient(Stage& stage, const Filled& filled) {
  ExpectClient(stage, filled, "the default USB client", Bus(stage).default_client());
}

void ExpectButton(Stage& stage, const Filled& filled) {
  const std::uint32_t button = NumberOf(filled);
  ExpectText(stage, fmt::format("what button {} signals", button), filled.Text("EVENTS"),
             EventsOfButton(stage.device().registry(), static_cast<LONG>(button)));
}

void ExpectRestart(Stage& stage, const Filled& filled) {
  const auto restarts = stage.device().restarts();
  const std::string wanted = "restart, " + filled.Text("KIND");
  const bool is_there = stage.restarts_seen < restarts.size();
  const std::string found =
      is_there ? sim::RestartText(restarts.at(stage.restarts_seen++)) : "no further restart";
  stage.Expect(found == wanted, "a " + wanted, found);
}

void ExpectNoRestart(Stage& stage, const Filled& /*filled*/) {
  const auto restarts = stage.device().restarts();
  const bool is_there = stage.restarts_seen < restarts.size();
  stage.Expect(!is_there, "no further restart",
               is_there ? sim::RestartText(restarts.at(stage.restarts_seen)) : "none");
}

}  // namespace palsim
