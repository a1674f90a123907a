// The Wi-Fi adapter, found among the network interfaces by its name.
#include <algorithm>
#include <array>

#include "frame/trace.h"
#include "sysinfo/capability/capability_probes.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kDeviceInformation};

constexpr auto kAdapterNames = std::to_array<const char*>({"AR6K_SD1", "TIWLN1"});
constexpr DWORD kEthernet = 6;
// No device has more interfaces. A wrong count of a driver must not keep the caller for ever.
constexpr DWORD kMaxInterfaces = 256;

bool IsWifiAdapter(const MIB_IFROW& row) {
  if (row.dwType != kEthernet) return false;
  const auto* const description = reinterpret_cast<const char*>(row.bDescr);
  return std::ranges::any_of(kAdapterNames, [description](const char* name) {
    return _strnicmp(description, name, sizeof(row.bDescr)) == 0;
  });
}

}  // namespace

DWORD PalDevCap_IsWifiInstalled() {
  DWORD count = 0;
  const DWORD error = GetNumberOfInterfaces(&count);
  if (error != ERROR_SUCCESS) {
    kTrace.Error("PalDevCap_IsWifiInstalled 0x%x=GetNumberOfInterfaces() failed.\r\n", error);
    return PAL_CAPABILITY_ERROR;
  }
  // One index more than there are interfaces: this finds all of them whether the driver counts from
  // 0 or from 1.
  const DWORD last = std::min(count, kMaxInterfaces);
  for (DWORD index = 0; index <= last; ++index) {
    MIB_IFROW row{};
    row.dwIndex = index;
    if (GetIfEntry(&row) != ERROR_SUCCESS || !IsWifiAdapter(row)) continue;
    kTrace.Info("PalDevCap_IsWifiInstalled WAN adapter found: %s\r\n",
                reinterpret_cast<const char*>(row.bDescr));
    return PAL_CAPABILITY_INSTALLED;
  }
  // Interfaces behind the last index may be it: this is no answer.
  return count > kMaxInterfaces ? PAL_CAPABILITY_ERROR : PAL_CAPABILITY_NOT_INSTALLED;
}

}  // namespace pal
