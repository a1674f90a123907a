// The address of the first wired network adapter, for devices without a serial number.
#ifndef SYSINFO_IDENTITY_ADAPTER_ADDRESS_H_
#define SYSINFO_IDENTITY_ADAPTER_ADDRESS_H_

#include <array>
#include <string_view>

#include "platform/wince.h"

namespace pal {

// Twelve lower-case digits: those of the first Ethernet adapter other than the USB one, or zeros
// where there is none, where the adapters cannot be listed and where memory is short. What a list
// gave is kept for the life of the process.
[[nodiscard]] std::array<char, 12> AdapterAddress();

}  // namespace pal

#endif  // SYSINFO_IDENTITY_ADAPTER_ADDRESS_H_
