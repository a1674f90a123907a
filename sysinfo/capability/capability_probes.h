// The probes behind the capabilities' names, beside those that are exported. Each answers a
// PALCapabilityState.
#ifndef SYSINFO_CAPABILITY_CAPABILITY_PROBES_H_
#define SYSINFO_CAPABILITY_CAPABILITY_PROBES_H_

#include "include/paldevcap.h"
#include "platform/wince.h"

namespace pal {

[[nodiscard]] DWORD PalDevCap_IsWifiInstalled();
[[nodiscard]] DWORD PalSysinfo_IsVibrateInstalled();

[[nodiscard]] DWORD PalSysinfo_IsCameraEnabled();
[[nodiscard]] DWORD PalSysinfo_IsWifiEnabled();
[[nodiscard]] DWORD PalSysinfo_IsBluetoothEnabled();
[[nodiscard]] DWORD PalSysinfo_IsIntScannerEnabled();
[[nodiscard]] DWORD PalSysinfo_IsVibrateEnabled();
[[nodiscard]] DWORD PalSysinfo_IsWwanEnabled();
[[nodiscard]] DWORD PalSysinfo_IsGpsEnabled();
[[nodiscard]] DWORD PalSysinfo_IsCompassEnabled();
[[nodiscard]] DWORD PalSysinfo_IsAccelEnabled();
[[nodiscard]] DWORD PalSysinfo_IsPedometerEnabled();

}  // namespace pal

#endif  // SYSINFO_CAPABILITY_CAPABILITY_PROBES_H_
