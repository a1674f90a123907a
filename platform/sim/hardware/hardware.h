// The parts of the device without its kernel. Tests and device.toml set them, and the platform's
// calls read them.
#ifndef PLATFORM_SIM_HARDWARE_HARDWARE_H_
#define PLATFORM_SIM_HARDWARE_HARDWARE_H_

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "platform/sim/hardware/audio.h"
#include "platform/sim/hardware/display.h"
#include "platform/sim/hardware/driver.h"
#include "platform/sim/hardware/leds.h"
#include "platform/sim/hardware/network.h"
#include "platform/sim/hardware/query_answer.h"
#include "platform/sim/hardware/radio.h"
#include "platform/sim/hardware/system.h"

namespace sim {

struct Hardware {
  // Non-volatile parameters by id. A parameter that is not here cannot be read.
  std::map<std::uint16_t, QueryAnswer> parameters;
  SystemInformation system;
  std::vector<NetworkAdapter> adapters;
  std::vector<NetworkInterface> interfaces;
  std::optional<BluetoothMode> bluetooth;  // nothing: the device has no radio
  Display display;
  std::vector<std::shared_ptr<Driver>> drivers;
  Audio audio;
  Leds leds;
};

}  // namespace sim

#endif  // PLATFORM_SIM_HARDWARE_HARDWARE_H_
