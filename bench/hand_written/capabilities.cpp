// The capabilities of the device, and its vehicle dock.
#include <cstdlib>

#include "bench/hand_written/registry.h"
#include "include/paldevcap.h"
#include "include/palmfgopt.h"
#include "include/palonewire.h"
#include "include/palvib.h"

namespace {

HANDLE OpenDriver(const WCHAR* name, DWORD share) {
  return CreateFileW(name, GENERIC_READ | GENERIC_WRITE, share, nullptr, OPEN_EXISTING, 0, nullptr);
}

DWORD StateOfType(DWORD type) {
  if (type == 254) return PAL_CAPABILITY_NOT_DETERMINED;
  return type == 255 ? PAL_CAPABILITY_NOT_INSTALLED : PAL_CAPABILITY_INSTALLED;
}

DWORD IsWifiInstalled() {
  DWORD count = 0;
  if (GetNumberOfInterfaces(&count) != ERROR_SUCCESS) return PAL_CAPABILITY_ERROR;
  const DWORD last = count < 256 ? count : 256;
  MIB_IFROW row;
  for (DWORD index = 0; index <= last; ++index) {
    memset(&row, 0, sizeof(row));
    row.dwIndex = index;
    if (GetIfEntry(&row) != ERROR_SUCCESS || row.dwType != 6) continue;
    const char* description = reinterpret_cast<const char*>(row.bDescr);
    if (_strnicmp(description, "AR6K_SD1", sizeof(row.bDescr)) == 0 ||
        _strnicmp(description, "TIWLN1", sizeof(row.bDescr)) == 0) {
      return PAL_CAPABILITY_INSTALLED;
    }
  }
  return count > 256 ? PAL_CAPABILITY_ERROR : PAL_CAPABILITY_NOT_INSTALLED;
}

DWORD IsVibratorInstalled() {
  return PALVIBIsInstalled() < 0 ? PAL_CAPABILITY_NOT_INSTALLED : PAL_CAPABILITY_INSTALLED;
}

DWORD IsCameraEnabled() {
  if (PalSysinfo_IsCameraInstalled() != PAL_CAPABILITY_INSTALLED) return PAL_CAPABILITY_DISABLED;
  DWORD enabled = 0;
  if (PALMFGOpt_IsCameraEnabled(&enabled) < 0) return PAL_CAPABILITY_ERROR;
  return enabled != 0 ? PAL_CAPABILITY_ENABLED : PAL_CAPABILITY_DISABLED;
}

DWORD IsBluetoothEnabled() {
  const DWORD installed = PalSysinfo_IsBluetoothInstalled();
  if (installed != PAL_CAPABILITY_INSTALLED) return installed;
  DWORD mode = 0;
  if (BthGetMode(&mode) != ERROR_SUCCESS) return PAL_CAPABILITY_ERROR;
  return mode != 0 ? PAL_CAPABILITY_ENABLED : PAL_CAPABILITY_DISABLED;
}

DWORD IsModemEnabled() {
  if (PalSysinfo_IsWwanInstalled() != PAL_CAPABILITY_INSTALLED) return PAL_CAPABILITY_DISABLED;
  DWORD state = 0;
  if (ReadDword(HKEY_LOCAL_MACHINE, TEXT("\\Software\\Microsoft\\RIL"), TEXT("LastEquipmentState"),
                &state) < 0) {
    return PAL_CAPABILITY_ERROR;
  }
  if (state == 2) return PAL_CAPABILITY_ENABLED;
  return state == 1 ? DWORD{PAL_CAPABILITY_DISABLED} : state;
}

// ERROR where nothing is known.
DWORD StateOfPlugin(const char* name) {
  const size_t units = strlen(name) + 1;
  auto* wide = static_cast<WCHAR*>(malloc(units * sizeof(WCHAR)));
  if (wide == nullptr) return PAL_CAPABILITY_ERROR;
  mbstowcs(wide, name, units);
  DWORD installed = 0;
  const HRESULT result = ReadDword(
      HKEY_LOCAL_MACHINE, TEXT("Software\\Dravonel\\PAL\\DeviceCapabilities"), wide, &installed);
  free(wide);
  if (result < 0) return PAL_CAPABILITY_NOT_DETERMINED;
  return installed != 0 ? PAL_CAPABILITY_INSTALLED : PAL_CAPABILITY_NOT_INSTALLED;
}

}  // namespace

DWORD PALAPI PALDevCap_GetDevCapsA(const char* name) {
  if (name == nullptr) return PAL_CAPABILITY_ERROR;
  const DWORD plugin = StateOfPlugin(name);
  if (plugin == PAL_CAPABILITY_INSTALLED || plugin == PAL_CAPABILITY_NOT_INSTALLED) return plugin;
  if (_stricmp(name, "Camera") == 0) return PalSysinfo_IsCameraInstalled();
  if (_stricmp(name, "Wifi") == 0) return IsWifiInstalled();
  if (_stricmp(name, "Bluetooth") == 0) return PalSysinfo_IsBluetoothInstalled();
  if (_stricmp(name, "InternalScanner") == 0) return PalSysinfo_IsIntScannerInstalled();
  if (_stricmp(name, "Vibrate") == 0) return IsVibratorInstalled();
  if (_stricmp(name, "WWAN") == 0) return PalSysinfo_IsWwanInstalled();
  if (_stricmp(name, "GPS") == 0) return PalSysinfo_IsGpsInstalled();
  if (_stricmp(name, "Compass") == 0) return PalSysinfo_IsCompassInstalled();
  if (_stricmp(name, "Accelerometer") == 0) return PalSysinfo_IsAccelInstalled();
  if (_stricmp(name, "Pedometer") == 0) return PalSysinfo_IsPedometerInstalled();
  return plugin;
}

DWORD PALAPI PALDevCap_GetDevCapsW(const WCHAR* name) {
  if (name == nullptr) return PAL_CAPABILITY_ERROR;
  char narrow[128];
  if (wcstombs(narrow, name, sizeof(narrow)) >= sizeof(narrow)) {
    return PAL_CAPABILITY_NOT_DETERMINED;
  }
  return PALDevCap_GetDevCapsA(narrow);
}

DWORD PALAPI PALDevCap_EnabledA(const char* name) {
  if (name == nullptr) return PAL_CAPABILITY_NOT_DETERMINED;
  if (_stricmp(name, "Camera") == 0) return IsCameraEnabled();
  if (_stricmp(name, "Wifi") == 0) return PAL_CAPABILITY_NOT_DETERMINED;
  if (_stricmp(name, "Bluetooth") == 0) return IsBluetoothEnabled();
  if (_stricmp(name, "InternalScanner") == 0) {
    return PalSysinfo_IsIntScannerInstalled() == PAL_CAPABILITY_INSTALLED ? PAL_CAPABILITY_ENABLED
                                                                          : PAL_CAPABILITY_DISABLED;
  }
  if (_stricmp(name, "Vibrate") == 0) {
    return PALVIBIsInstalled() < 0 ? PAL_CAPABILITY_NOT_INSTALLED : PAL_CAPABILITY_ENABLED;
  }
  if (_stricmp(name, "WWAN") == 0 || _stricmp(name, "GPS") == 0) return IsModemEnabled();
  if (_stricmp(name, "Accelerometer") == 0) {
    return PalSysinfo_IsAccelInstalled() == PAL_CAPABILITY_INSTALLED ? PAL_CAPABILITY_ENABLED
                                                                     : PAL_CAPABILITY_NOT_INSTALLED;
  }
  if (_stricmp(name, "Pedometer") == 0) return PAL_CAPABILITY_DISABLED;
  return PAL_CAPABILITY_NOT_DETERMINED;
}

DWORD PALAPI PALDevCap_EnabledW(const WCHAR* name) {
  if (name == nullptr) return PAL_CAPABILITY_NOT_DETERMINED;
  char narrow[128];
  if (wcstombs(narrow, name, sizeof(narrow)) >= sizeof(narrow)) {
    return PAL_CAPABILITY_NOT_DETERMINED;
  }
  return PALDevCap_EnabledA(narrow);
}

DWORD PALAPI PalSysinfo_IsBluetoothInstalled() {
  HANDLE file = CreateFileW(TEXT("\\ConfigStore\\BMN0"), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                            FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == nullptr) return PAL_CAPABILITY_ERROR;
  if (file == INVALID_HANDLE_VALUE) return PAL_CAPABILITY_NOT_INSTALLED;
  BYTE content[12];
  DWORD bytes = 0;
  const BOOL done = ReadFile(file, content, sizeof(content), &bytes, nullptr);
  CloseHandle(file);
  return done != FALSE ? PAL_CAPABILITY_INSTALLED : PAL_CAPABILITY_NOT_INSTALLED;
}

DWORD PALAPI PalSysinfo_IsIntScannerInstalled() {
  DWORD type = 0;
  DWORD s6_installed = 0;
  if (PALMFGOpt_InternalDeviceType(&type, &s6_installed) < 0) return PAL_CAPABILITY_ERROR;
  return StateOfType(type);
}

DWORD PALAPI PalSysinfo_IsCameraInstalled() {
  DWORD type = 0;
  if (PALMFGOpt_InternalDevice2Type(&type) < 0) return PAL_CAPABILITY_ERROR;
  return StateOfType(type);
}

DWORD PALAPI PalSysinfo_IsWwanInstalled() {
  return GetFileAttributesW(TEXT("\\Windows\\ril.dll")) != INVALID_FILE_ATTRIBUTES
             ? PAL_CAPABILITY_INSTALLED
             : PAL_CAPABILITY_NOT_INSTALLED;
}

DWORD PALAPI PalSysinfo_IsGpsInstalled() {
  return PalSysinfo_IsWwanInstalled();
}
DWORD PALAPI PalSysinfo_IsCompassInstalled() {
  return PAL_CAPABILITY_NOT_INSTALLED;
}
DWORD PALAPI PalSysinfo_IsPedometerInstalled() {
  return PAL_CAPABILITY_NOT_INSTALLED;
}

DWORD PALAPI PalSysinfo_IsAccelInstalled() {
  HANDLE driver = OpenDriver(TEXT("ISL0:"), 0);
  if (driver == INVALID_HANDLE_VALUE) return PAL_CAPABILITY_NOT_INSTALLED;
  CloseHandle(driver);
  return PAL_CAPABILITY_INSTALLED;
}

namespace {

struct OneWireRecord {
  DWORD index;
  BYTE id[8];
  DWORD start_address;
  DWORD bytes;
  BYTE memory[256];
  DWORD status;
};

BOOL CallBus(HANDLE bus, DWORD code, DWORD index, DWORD bytes, OneWireRecord* record) {
  memset(record, 0, sizeof(*record));
  record->index = index;
  record->bytes = bytes;
  DWORD returned = 0;
  return DeviceIoControl(bus, code, record, sizeof(*record), record, sizeof(*record), &returned,
                         nullptr) != FALSE &&
         record->status == 0;
}

BOOL IsDock(HANDLE bus, DWORD index) {
  OneWireRecord record;
  return CallBus(bus, 0x8010000C, index, 0, &record) &&
         CallBus(bus, 0x80100014, index, 0, &record) &&
         CallBus(bus, 0x80100018, index, sizeof(record.memory), &record) &&
         memcmp(record.memory + 1, "871231", 6) == 0;
}

BOOL HasDock(HANDLE bus) {
  OneWireRecord record;
  if (!CallBus(bus, 0x80100004, 0, 0, &record) || !CallBus(bus, 0x80100008, 0, 0, &record)) {
    return FALSE;
  }
  const DWORD count = record.index < 256 ? record.index : 256;
  for (DWORD index = 0; index < count; ++index) {
    if (IsDock(bus, index)) return TRUE;
  }
  return FALSE;
}

}  // namespace

DWORD PALAPI PALOneWire_IsVehicleDockAttached() {
  HANDLE bus = OpenDriver(TEXT("WIR1:"), FILE_SHARE_READ | FILE_SHARE_WRITE);
  if (bus == INVALID_HANDLE_VALUE) return 0;
  const BOOL has_dock = HasDock(bus);
  CloseHandle(bus);
  return has_dock != FALSE ? 1 : 0;
}
