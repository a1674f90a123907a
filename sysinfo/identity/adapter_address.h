// The address of the first wired network adapter, for devices without a serial number.
#ifndef SYSINFO_IDENTITY_ADAPTER_ADDRESS_H_
#define SYSINFO_IDENTITY_ADAPTER_ADDRESS_H_

#include <array>
#include <string_view>

#include "platform/wince.h"

namespace pal {

// Twelve lower-case digits of the first Ethernet adapter that is not the USB one. Zeros where there
// is no such adapter, the adapters cannot be listed, or there is no memory. The answer of a list is
// kept until the process ends.
[[nodiscard]] std::array<char, 12> AdapterAddress();

}  // namespace pal

#endif  // SYSINFO_IDENTITY_ADAPTER_ADDRESS_H_
