// The identity values that the registry holds for devices without parameters.
#ifndef SYSINFO_IDENTITY_IDENTITY_REGISTRY_H_
#define SYSINFO_IDENTITY_IDENTITY_REGISTRY_H_

#include <span>
#include <string_view>

#include "platform/wince.h"

namespace pal {

// Room for a text of 128 bytes of UTF-16 and its end.
using IdentityRegistryText = char[65];

// Reads the text `name` below HKEY_LOCAL_MACHINE\Software\Dravonel\DVLHWID. Empty where key or
// value do not exist, where the value is no REG_SZ or has more than 128 bytes, and where it is
// empty.
[[nodiscard]] std::string_view ReadIdentityRegistry(const WCHAR* name,
                                                    IdentityRegistryText& buffer);

}  // namespace pal

#endif  // SYSINFO_IDENTITY_IDENTITY_REGISTRY_H_
