// The Bluetooth radio.
#ifndef PLATFORM_SIM_HARDWARE_RADIO_H_
#define PLATFORM_SIM_HARDWARE_RADIO_H_

#include <cstdint>

namespace sim {

// The numbers are the platform's.
enum class BluetoothMode : std::uint8_t { kOff = 0, kConnectable = 1, kDiscoverable = 2 };

}  // namespace sim

#endif  // PLATFORM_SIM_HARDWARE_RADIO_H_
