// The identity texts in the registry, for devices without parameters.
#ifndef SYSINFO_IDENTITY_IDENTITY_REGISTRY_H_
#define SYSINFO_IDENTITY_IDENTITY_REGISTRY_H_

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

}  // namespace pal

#endif  // SYSINFO_IDENTITY_IDENTITY_REGISTRY_H_
