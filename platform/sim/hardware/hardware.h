// What the device is made of, apart from its kernel: read by the platform's calls, set by tests and
// by device.toml.
#ifndef PLATFORM_SIM_HARDWARE_HARDWARE_H_
#define PLATFORM_SIM_HARDWARE_HARDWARE_H_

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "platform/sim/hardware/audio.h"
#include "platform/sim/hardware/driver.h"
#include "platform/sim/hardware/leds.h"
#include "platform/sim/hardware/network.h"
#include "platform/sim/hardware/query_answer.h"
#include "platform/sim/hardware/system.h"

namespace sim {

struct Hardware {
  // Non-volatile parameters by id; one that is absent cannot be read.
  std::map<std::uint16_t, QueryAnswer> parameters;
  SystemInformation system;
  std::vector<NetworkAdapter> adapters;
  std::vector<std::shared_ptr<Driver>> drivers;
  Audio audio;
  Leds leds;
};

}  // namespace sim

#endif  // PLATFORM_SIM_HARDWARE_HARDWARE_H_
