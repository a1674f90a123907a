// The network adapters and the table of network interfaces.
#ifndef PLATFORM_SIM_HARDWARE_NETWORK_H_
#define PLATFORM_SIM_HARDWARE_NETWORK_H_

#include <cstdint>
#include <string>
#include <vector>

namespace sim {

struct NetworkAdapter {
  std::string name;                   // at most 259 characters
  std::vector<std::uint8_t> address;  // at most eight bytes
  std::uint32_t type = 6;             // Ethernet; 71 is a wireless adapter
};

struct NetworkInterface {
  std::string description{};  // at most 256 bytes
  std::uint32_t type = 6;
  std::uint32_t index = 0;  // the index that a query for this entry gives
};

}  // namespace sim

#endif  // PLATFORM_SIM_HARDWARE_NETWORK_H_
