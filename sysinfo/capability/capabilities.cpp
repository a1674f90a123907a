// The capabilities by their names.
#include <array>
#include <memory>
#include <new>
#include <string_view>

#include "frame/registry.h"
#include "frame/result.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "include/paldevcap.h"
#include "sysinfo/capability/capability_probes.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kDeviceInformation};

struct Capability {
  const char* name;
  DWORD (*installed)();
  DWORD (*enabled)();
};

constexpr auto kCapabilities = std::to_array<Capability>({
    {"Camera", &PalSysinfo_IsCameraInstalled, &PalSysinfo_IsCameraEnabled},
    {"Wifi", &PalDevCap_IsWifiInstalled, &PalSysinfo_IsWifiEnabled},
    {"Bluetooth", &PalSysinfo_IsBluetoothInstalled, &PalSysinfo_IsBluetoothEnabled},
    {"InternalScanner", &PalSysinfo_IsIntScannerInstalled, &PalSysinfo_IsIntScannerEnabled},
    {"Vibrate", &PalSysinfo_IsVibrateInstalled, &PalSysinfo_IsVibrateEnabled},
    {"WWAN", &PalSysinfo_IsWwanInstalled, &PalSysinfo_IsWwanEnabled},
    {"GPS", &PalSysinfo_IsGpsInstalled, &PalSysinfo_IsGpsEnabled},
    {"Compass", &PalSysinfo_IsCompassInstalled, &PalSysinfo_IsCompassEnabled},
    {"Accelerometer", &PalSysinfo_IsAccelInstalled, &PalSysinfo_IsAccelEnabled},
    {"Pedometer", &PalSysinfo_IsPedometerInstalled, &PalSysinfo_IsPedometerEnabled},
});

using NarrowName = char[128];

// Null where there is no capability of that name.
const Capability* Find(const char* name) {
  for (const Capability& capability : kCapabilities) {
    if (_stricmp(capability.name, name) == 0) return &capability;
  }
  return nullptr;
}

DWORD PalDevCap_IsPluginInstalled(const char* name) {
  const std::string_view text(name);
  const size_t units = text.size() + 1;
  const std::unique_ptr<WCHAR[]> wide(new (std::nothrow_t{}) WCHAR[units]);
  if (wide == nullptr || !Widen({wide.get(), units}, text)) {
    kTrace.Error("ERROR PalDevCap_IsPluginInstalled(%s) Failure to allocate mem\r\n", name);
    return PAL_CAPABILITY_ERROR;
  }
  DWORD installed = 0;
  if (Failed(PALRegGetDword(HKEY_LOCAL_MACHINE, TEXT("Software\\Dravonel\\PAL\\DeviceCapabilities"),
                            wide.get(), &installed))) {
    return PAL_CAPABILITY_NOT_DETERMINED;
  }
  return installed != 0 ? PAL_CAPABILITY_INSTALLED : PAL_CAPABILITY_NOT_INSTALLED;
}

DWORD StateOf(const char* name) {
  const DWORD plugin = PalDevCap_IsPluginInstalled(name);
  if (plugin == PAL_CAPABILITY_INSTALLED || plugin == PAL_CAPABILITY_NOT_INSTALLED) return plugin;
  const Capability* const capability = Find(name);
  return capability != nullptr ? capability->installed() : plugin;
}

DWORD EnabledStateOf(const char* name) {
  const Capability* const capability = Find(name);
  if (capability == nullptr) return PAL_CAPABILITY_NOT_DETERMINED;
  return capability->enabled();
}

// Of a name that is too long for any capability nothing is known.
DWORD StateOfNarrowed(const WCHAR* name, DWORD (*state_of)(const char* name)) {
  NarrowName narrow{};
  if (!Narrow(narrow, name)) return PAL_CAPABILITY_NOT_DETERMINED;
  return state_of(narrow);
}

}  // namespace
}  // namespace pal

DWORD PALAPI PALDevCap_GetDevCapsA(const char* name) {
  if (name != nullptr) return pal::StateOf(name);
  const DWORD state = PAL_CAPABILITY_ERROR;
  pal::kTrace.Error("PALDevCap_GetDevCapsA - Input invalid. dwRet:0x%x\r\n", state);
  return state;
}

DWORD PALAPI PALDevCap_GetDevCapsW(const WCHAR* name) {
  if (name != nullptr) return pal::StateOfNarrowed(name, &pal::StateOf);
  const DWORD state = PAL_CAPABILITY_ERROR;
  pal::kTrace.Error("PALDevCap_GetDevCapsW - Input invalid. dwRet:0x%x\r\n", state);
  return state;
}

DWORD PALAPI PALDevCap_EnabledA(const char* name) {
  const char* const shown = name != nullptr ? name : "(null)";
  pal::kTrace.Info("PALDevCap_EnabledA(%s) - Entry", shown);
  DWORD state = PAL_CAPABILITY_NOT_DETERMINED;
  if (name == nullptr) {
    pal::kTrace.Error("PALDevCap_EnabledA - Input invalid. dwRet:0x%x\r\n", state);
  } else {
    state = pal::EnabledStateOf(name);
  }
  pal::kTrace.Info("0x%x=PALDevCap_EnabledA(%s) - Exit", state, shown);
  return state;
}

DWORD PALAPI PALDevCap_EnabledW(const WCHAR* name) {
  const WCHAR* const shown = pal::ShownText(name);
  pal::kTrace.Info("PALDevCap_EnabledW(%ls) - Entry", shown);
  DWORD state = PAL_CAPABILITY_NOT_DETERMINED;
  if (name == nullptr) {
    pal::kTrace.Error("PALDevCap_EnabledW - Input invalid. dwRet:0x%x\r\n", state);
  } else {
    state = pal::StateOfNarrowed(name, &pal::EnabledStateOf);
  }
  pal::kTrace.Info("0x%x=PALDevCap_EnabledW(%ls) - Exit", state, shown);
  return state;
}
