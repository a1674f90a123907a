#include "sysinfo/capability/capability_probes.h"

#include "frame/registry.h"
#include "frame/result.h"
#include "frame/trace.h"
#include "frame/unique_handle.h"
#include "include/palmfgopt.h"
#include "include/palvib.h"
#include "sysinfo/options/device_codes.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kDeviceInformation};

// Runs a probe between its entry line and its exit line.
DWORD Traced(TraceSource::Format<> entry, TraceSource::Format<DWORD> exit, DWORD (*probe)()) {
  kTrace.Info(entry);
  const DWORD state = probe();
  kTrace.Info(exit, state);
  return state;
}

template <DWORD kState>
DWORD Always() {
  return kState;
}

DWORD StateOfDeviceType(DWORD type) {
  if (type == PAL_DEVICE_TYPE_UNKNOWN) return PAL_CAPABILITY_NOT_DETERMINED;
  return type == PAL_DEVICE_TYPE_NONE ? PAL_CAPABILITY_NOT_INSTALLED : PAL_CAPABILITY_INSTALLED;
}

DWORD FindInternalScanner() {
  DWORD type = 0;
  DWORD s6_installed = 0;
  const HRESULT result = PALMFGOpt_InternalDeviceType(&type, &s6_installed);
  if (Succeeded(result)) return StateOfDeviceType(type);
  kTrace.Error("PalIsIntScannerInstalled - ERROR 0x%x=PALMFGOpt_InternalDeviceType()\r\n", result);
  return PAL_CAPABILITY_ERROR;
}

DWORD IsInternalScannerUsable() {
  return PalSysinfo_IsIntScannerInstalled() == PAL_CAPABILITY_INSTALLED ? PAL_CAPABILITY_ENABLED
                                                                        : PAL_CAPABILITY_DISABLED;
}

DWORD FindCamera() {
  DWORD type = 0;
  const HRESULT result = PALMFGOpt_InternalDevice2Type(&type);
  if (Succeeded(result)) return StateOfDeviceType(type);
  kTrace.Error("PalIsCameraInstalled - 0x%x=PALMFGOpt_InternalDevice2Type()\r\n", result);
  return PAL_CAPABILITY_ERROR;
}

DWORD IsCameraUsable() {
  if (PalSysinfo_IsCameraInstalled() != PAL_CAPABILITY_INSTALLED) return PAL_CAPABILITY_DISABLED;
  DWORD enabled = 0;
  static_cast<void>(PALMFGOpt_IsCameraEnabled(&enabled));  // never fails
  return enabled != 0 ? PAL_CAPABILITY_ENABLED : PAL_CAPABILITY_DISABLED;
}

DWORD IsRadioOn() {
  const DWORD installed = PalSysinfo_IsBluetoothInstalled();
  if (installed != PAL_CAPABILITY_INSTALLED) return installed;
  DWORD mode = 0;
  if (BthGetMode(&mode) != ERROR_SUCCESS) return PAL_CAPABILITY_ERROR;
  return mode != 0 ? PAL_CAPABILITY_ENABLED : PAL_CAPABILITY_DISABLED;
}

DWORD IsVibratorUsable() {
  return Failed(PALVIBIsInstalled()) ? PAL_CAPABILITY_NOT_INSTALLED : PAL_CAPABILITY_ENABLED;
}

DWORD FindModem() {
  return GetFileAttributesW(TEXT("\\Windows\\ril.dll")) != INVALID_FILE_ATTRIBUTES
             ? PAL_CAPABILITY_INSTALLED
             : PAL_CAPABILITY_NOT_INSTALLED;
}

// Any other equipment state is the answer itself.
DWORD IsModemOn() {
  constexpr DWORD kEquipmentOff = 1;
  constexpr DWORD kEquipmentOn = 2;
  if (PalSysinfo_IsWwanInstalled() != PAL_CAPABILITY_INSTALLED) return PAL_CAPABILITY_DISABLED;
  DWORD equipment = 0;
  if (Failed(PALRegGetDword(HKEY_LOCAL_MACHINE, TEXT("\\Software\\Microsoft\\RIL"),
                            TEXT("LastEquipmentState"), &equipment))) {
    return PAL_CAPABILITY_ERROR;
  }
  if (equipment == kEquipmentOn) return PAL_CAPABILITY_ENABLED;
  if (equipment == kEquipmentOff) return PAL_CAPABILITY_DISABLED;
  return equipment;
}

bool CanOpenAccelerometer() {
  const UniqueFile driver(CreateFileW(TEXT("ISL0:"), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                      OPEN_EXISTING, 0, nullptr));
  return static_cast<bool>(driver);
}

DWORD IsAccelerometerUsable() {
  return CanOpenAccelerometer() ? PAL_CAPABILITY_ENABLED : PAL_CAPABILITY_NOT_INSTALLED;
}

}  // namespace

DWORD PalSysinfo_IsVibrateInstalled() {
  const HRESULT result = PALVIBIsInstalled();
  if (Succeeded(result)) return PAL_CAPABILITY_INSTALLED;
  kTrace.Error("PalSysinfo_IsVibrateInstalled - ERROR PALVIBIsInstalled(). hr: 0x%x\r\n", result);
  return PAL_CAPABILITY_NOT_INSTALLED;
}

DWORD PalSysinfo_IsCameraEnabled() {
  return Traced("PalSysinfo_IsCameraEnabled() - Entry", "0x%x=PalSysinfo_IsCameraEnabled() - Exit",
                &IsCameraUsable);
}

DWORD PalSysinfo_IsWifiEnabled() {
  return Traced("PalSysinfo_IsWifiEnabled() - Entry", "0x%x=PalSysinfo_IsWifiEnabled() - Exit",
                &Always<PAL_CAPABILITY_NOT_DETERMINED>);
}

DWORD PalSysinfo_IsBluetoothEnabled() {
  return Traced("PalSysinfo_IsBluetoothEnabled() - Entry",
                "0x%x=PalSysinfo_IsBluetoothEnabled() - Exit", &IsRadioOn);
}

DWORD PalSysinfo_IsIntScannerEnabled() {
  return Traced("PalSysinfo_IsIntScannerEnabled() - Entry",
                "0x%x=PalSysinfo_IsIntScannerEnabled() - Exit", &IsInternalScannerUsable);
}

DWORD PalSysinfo_IsVibrateEnabled() {
  return Traced("PalSysinfo_IsVibrateEnabled() - Entry",
                "0x%x=PalSysinfo_IsVibrateEnabled() - Exit", &IsVibratorUsable);
}

DWORD PalSysinfo_IsWwanEnabled() {
  return Traced("PalSysinfo_IsWwanEnabled() - Entry", "0x%x=PalSysinfo_IsWwanEnabled() - Exit",
                &IsModemOn);
}

DWORD PalSysinfo_IsGpsEnabled() {
  return Traced("PalSysinfo_IsGpsEnabled() - Entry", "0x%x=PalSysinfo_IsGpsEnabled() - Exit",
                &PalSysinfo_IsWwanEnabled);
}

DWORD PalSysinfo_IsCompassEnabled() {
  return Traced("PalSysinfo_IsCompassEnabled() - Entry",
                "0x%x=PalSysinfo_IsCompassEnabled() - Exit",
                &Always<PAL_CAPABILITY_NOT_DETERMINED>);
}

DWORD PalSysinfo_IsAccelEnabled() {
  return Traced("PalSysinfo_IsAccelEnabled() - Entry", "0x%x=PalSysinfo_IsAccelEnabled() - Exit",
                &IsAccelerometerUsable);
}

DWORD PalSysinfo_IsPedometerEnabled() {
  return Traced("PalSysinfo_IsPedometerEnabled() - Entry",
                "0x%x=PalSysinfo_IsPedometerEnabled() - Exit", &Always<PAL_CAPABILITY_DISABLED>);
}

}  // namespace pal

DWORD PALAPI PalSysinfo_IsBluetoothInstalled() {
  const pal::UniqueFile file(CreateFileW(TEXT("\\ConfigStore\\BMN0"), GENERIC_READ, 0, nullptr,
                                         OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) {
    pal::kTrace.Error("PalSysinfo_IsBluetoothInstalled - ERROR CreateFile(). win32err: 0x%x\r\n",
                      GetLastError());
    return file.get() == nullptr ? PAL_CAPABILITY_ERROR : PAL_CAPABILITY_NOT_INSTALLED;
  }
  BYTE content[12];
  DWORD bytes_read = 0;
  if (ReadFile(file.get(), content, sizeof(content), &bytes_read, nullptr) != FALSE) {
    return PAL_CAPABILITY_INSTALLED;
  }
  pal::kTrace.Error("PalSysinfo_IsBluetoothInstalled - ERROR ReadFile(). win32err: 0x%x\r\n",
                    GetLastError());
  return PAL_CAPABILITY_NOT_INSTALLED;
}

DWORD PALAPI PalSysinfo_IsAccelInstalled() {
  if (pal::CanOpenAccelerometer()) return PAL_CAPABILITY_INSTALLED;
  pal::kTrace.Error("PalSysinfo_IsAccelInstalled - ERROR CreateFile(). win32err: 0x%x\r\n",
                    GetLastError());
  return PAL_CAPABILITY_NOT_INSTALLED;
}

DWORD PALAPI PalSysinfo_IsIntScannerInstalled() {
  return pal::Traced("PalSysinfo_IsIntScannerInstalled() - Entry",
                     "0x%x=PalSysinfo_IsIntScannerInstalled() - Exit", &pal::FindInternalScanner);
}

DWORD PALAPI PalSysinfo_IsCameraInstalled() {
  return pal::Traced("PalSysinfo_IsCameraInstalled() - Entry",
                     "0x%x=PalSysinfo_IsCameraInstalled() - Exit", &pal::FindCamera);
}

DWORD PALAPI PalSysinfo_IsWwanInstalled() {
  return pal::Traced("PalSysinfo_IsWwanInstalled() - Entry",
                     "0x%x=PalSysinfo_IsWwanInstalled() - Exit", &pal::FindModem);
}

DWORD PALAPI PalSysinfo_IsGpsInstalled() {
  return pal::Traced("PalSysinfo_IsGpsInstalled() - Entry",
                     "0x%x=PalSysinfo_IsGpsInstalled() - Exit", &PalSysinfo_IsWwanInstalled);
}

DWORD PALAPI PalSysinfo_IsCompassInstalled() {
  return pal::Traced("PalSysinfo_IsCompassInstalled() - Entry",
                     "0x%x=PalSysinfo_IsCompassInstalled() - Exit",
                     &pal::Always<PAL_CAPABILITY_NOT_INSTALLED>);
}

DWORD PALAPI PalSysinfo_IsPedometerInstalled() {
  return pal::Traced("PalSysinfo_IsPedometerInstalled() - Entry",
                     "0x%x=PalSysinfo_IsPedometerInstalled() - Exit",
                     &pal::Always<PAL_CAPABILITY_NOT_INSTALLED>);
}
