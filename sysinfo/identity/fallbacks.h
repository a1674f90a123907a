// What stands in for the parameters on devices that have none.
#ifndef SYSINFO_IDENTITY_FALLBACKS_H_
#define SYSINFO_IDENTITY_FALLBACKS_H_

#include <array>
#include <span>
#include <string_view>

#include "platform/wince.h"

namespace pal {

// Room for a text of 128 bytes of UTF-16 and its terminator.
using IdentityRegistryText = char[65];

// Reads the text `name` below HKEY_LOCAL_MACHINE\Software\Dravonel\DVLHWID. Empty where it does not
// exist, is of another type than REG_SZ, or has more than 128 bytes.
[[nodiscard]] std::string_view ReadIdentityRegistry(const WCHAR* name,
                                                    IdentityRegistryText& buffer);

// Twelve lower-case digits of the first Ethernet adapter that is not the USB one. Zeros where there
// is no such adapter, the adapters cannot be listed, or there is no memory. The answer of a list is
// kept until the process ends.
[[nodiscard]] std::array<char, 12> AdapterAddress();

}  // namespace pal

#endif  // SYSINFO_IDENTITY_FALLBACKS_H_
