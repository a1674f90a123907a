// Statements that change a world at random: wrong values on the device, events from outside,
// failures of platform calls, and kills.
#ifndef TOOLS_PALSIM_EXPLORE_VARIATIONS_H_
#define TOOLS_PALSIM_EXPLORE_VARIATIONS_H_

#include <string>

#include "platform/sim/device.h"
#include "tools/palsim/explore/choices.h"

namespace palsim {

// A statement that changes a value of the registry, as another program or a bad provisioning would.
[[nodiscard]] std::string ChooseRegistryChange(Choices& choices, sim::Device& device);
// The same for anything that the device has: a parameter, a driver, a library, a file, a value.
[[nodiscard]] std::string ChooseVariation(Choices& choices, sim::Device& device);
// What happens on a device in use: a headset comes, the dock is taken, a policy changes.
[[nodiscard]] std::string ChooseHappening(Choices& choices, sim::Device& device);
// Plans that a platform call fails, and that a process is killed in one.
[[nodiscard]] std::string ChooseFault(Choices& choices);
[[nodiscard]] std::string ChooseKill(Choices& choices);

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPLORE_VARIATIONS_H_
