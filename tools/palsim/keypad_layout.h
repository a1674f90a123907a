// The layouts of the keypad as its driver reads them in the registry.
#ifndef TOOLS_PALSIM_KEYPAD_LAYOUT_H_
#define TOOLS_PALSIM_KEYPAD_LAYOUT_H_

#include <optional>
#include <span>
#include <string>

#include "include/paltypes.h"
#include "platform/sim/kernel/registry.h"

namespace palsim {

// A key below HKEY_LOCAL_MACHINE.
[[nodiscard]] std::string KeyPath(const WCHAR* path);
// The path of the active layout; empty where the device names none.
[[nodiscard]] std::string ActiveLayout(const sim::Registry& registry);
// The two events that the driver signals for an event number of a layout, such as "Event1".
[[nodiscard]] std::string EventsText(const sim::Registry& registry, const std::string& layout,
                                     const std::string& value_name);
// Whether the driver signals an event for a record of a shift plane.
[[nodiscard]] bool SignalsEvent(std::span<const BYTE> record);
// What the driver signals for a button in plane 0: on each change, and for as long as it is held.
struct ButtonEvents {
  std::string delta;
  std::string state;
};
// Nothing where the button is an ordinary key or has no record.
[[nodiscard]] std::optional<ButtonEvents> FindEventsOfButton(const sim::Registry& registry,
                                                             LONG button);
// "DeltaLeftScan, StateLeftScan"; "nothing".
[[nodiscard]] std::string EventsOfButton(const sim::Registry& registry, LONG button);

}  // namespace palsim

#endif  // TOOLS_PALSIM_KEYPAD_LAYOUT_H_
