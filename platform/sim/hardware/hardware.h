// What the device is made of, apart from its kernel: read by the platform's calls, set by tests and
// by device.toml.
#ifndef PLATFORM_SIM_HARDWARE_HARDWARE_H_
#define PLATFORM_SIM_HARDWARE_HARDWARE_H_

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "platform/sim/hardware/driver.h"

namespace sim {

// What the kernel answers to a query: bytes, or an error.
struct QueryAnswer {
  std::vector<std::uint8_t> bytes{};
  std::uint32_t error = 0;
  // The count that the caller is told where it is not that of the bytes: for answers that lie.
  std::optional<std::uint32_t> returned{};
};

struct Hardware {
  // Non-volatile parameters by id; one that is absent cannot be read.
  std::map<std::uint16_t, QueryAnswer> parameters;
  std::vector<std::shared_ptr<Driver>> drivers;
};

}  // namespace sim

#endif  // PLATFORM_SIM_HARDWARE_HARDWARE_H_
