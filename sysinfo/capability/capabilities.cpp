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

// A longer name names no capability, in either form.
using NarrowName = char[128];
bool CopyName(NarrowName& to, const char* name) {
  return Copy(to, name);
}
bool CopyName(NarrowName& to, const WCHAR* name) {
  return Narrow(to, name);
}

template <typename Unit>
DWORD Ask(DWORD (*state_of)(const char* name), const Unit* name) {
  NarrowName narrow;
  if (!CopyName(narrow, name)) return PAL_CAPABILITY_NOT_DETERMINED;
  return state_of(narrow);
}

template <typename Unit>
DWORD GetDevCaps(const Unit* name, TraceSource::Format<DWORD> invalid) {
  if (name != nullptr) return Ask(&StateOf, name);
  kTrace.Error(invalid, DWORD{PAL_CAPABILITY_ERROR});
  return PAL_CAPABILITY_ERROR;
}

template <typename Unit>
struct EnabledLines {
  TraceSource::Format<const Unit*> entry;
  TraceSource::Format<DWORD> invalid;
  TraceSource::Format<DWORD, const Unit*> exit;
  const Unit* null_name;
};

template <typename Unit>
DWORD GetEnabled(const Unit* name, const EnabledLines<Unit>& lines) {
  const Unit* const shown = name != nullptr ? name : lines.null_name;
  kTrace.Info(lines.entry, shown);
  DWORD state = PAL_CAPABILITY_NOT_DETERMINED;
  if (name == nullptr) {
    kTrace.Error(lines.invalid, state);
  } else {
    state = Ask(&EnabledStateOf, name);
  }
  kTrace.Info(lines.exit, state, shown);
  return state;
}

}  // namespace
}  // namespace pal

DWORD PALAPI PALDevCap_GetDevCapsA(const char* name) {
  return pal::GetDevCaps(name, "PALDevCap_GetDevCapsA - Input invalid. dwRet:0x%x\r\n");
}

DWORD PALAPI PALDevCap_GetDevCapsW(const WCHAR* name) {
  return pal::GetDevCaps(name, "PALDevCap_GetDevCapsW - Input invalid. dwRet:0x%x\r\n");
}

DWORD PALAPI PALDevCap_EnabledA(const char* name) {
  constexpr pal::EnabledLines<char> kLines{"PALDevCap_EnabledA(%s) - Entry",
                                           "PALDevCap_EnabledA - Input invalid. dwRet:0x%x\r\n",
                                           "0x%x=PALDevCap_EnabledA(%s) - Exit", "(null)"};
  return pal::GetEnabled(name, kLines);
}

DWORD PALAPI PALDevCap_EnabledW(const WCHAR* name) {
  constexpr pal::EnabledLines<WCHAR> kLines{"PALDevCap_EnabledW(%ls) - Entry",
                                            "PALDevCap_EnabledW - Input invalid. dwRet:0x%x\r\n",
                                            "0x%x=PALDevCap_EnabledW(%ls) - Exit", TEXT("(null)")};
  return pal::GetEnabled(name, kLines);
}
