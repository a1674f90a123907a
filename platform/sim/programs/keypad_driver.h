// The driver of the keypad, as far as a change of its layout goes.
#ifndef PLATFORM_SIM_PROGRAMS_KEYPAD_DRIVER_H_
#define PLATFORM_SIM_PROGRAMS_KEYPAD_DRIVER_H_

#include "platform/sim/device.h"

namespace sim {

// Waits for the event "DVL_KEYBOARD_CHANGE_USB" and reads the active layout anew each time it is
// set, for as long as the device runs. The journal shows how many records each shift plane has, or
// what is wrong with it. To be started with Device::StartProgram.
[[nodiscard]] Program KeypadDriver();

}  // namespace sim

#endif  // PLATFORM_SIM_PROGRAMS_KEYPAD_DRIVER_H_
