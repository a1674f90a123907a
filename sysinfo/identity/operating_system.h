// The version of the operating system.
#ifndef SYSINFO_IDENTITY_OPERATING_SYSTEM_H_
#define SYSINFO_IDENTITY_OPERATING_SYSTEM_H_

#include "platform/wince.h"

namespace pal {

// False where the call fails; all numbers of `version` are then 0.
[[nodiscard]] inline bool ReadOsVersion(OSVERSIONINFOW& version) {
  version = {};
  version.dwOSVersionInfoSize = sizeof(version);
  if (GetVersionExW(&version) != FALSE) return true;
  version = {};
  return false;
}

}  // namespace pal

#endif  // SYSINFO_IDENTITY_OPERATING_SYSTEM_H_
