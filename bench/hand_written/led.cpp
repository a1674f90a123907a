// The LEDs and the vibrator.
#include "bench/hand_written/mutex.h"
#include "bench/hand_written/registry.h"
#include "include/palled.h"
#include "include/palvib.h"

namespace {

constexpr const WCHAR* kSettings = TEXT("SOFTWARE\\Dravonel\\PAL");

constinit HANDLE led_mutex = nullptr;
constinit HANDLE on_timeout_event = nullptr;

BOOL SetLed(UINT number, INT command) {
  NLED_SETTINGS_INFO settings;
  memset(&settings, 0, sizeof(settings));
  settings.LedNum = number;
  settings.OffOnBlink = command;
  return NLedSetDevice(NLED_SETTINGS_INFO_ID, &settings);
}

HRESULT SwitchLed(UINT number, INT command) {
  const HRESULT result = WaitFor(led_mutex);
  if (result < 0) return result;
  SetLed(number, command);
  ReleaseMutex(led_mutex);
  return S_OK;
}

}  // namespace

HRESULT PALAPI PALLEDInit() {
  HANDLE mutex = CreateMutexW(nullptr, FALSE, TEXT("DVLORQPAL_LED_MUTEX"));
  if (mutex == nullptr) return ResultOfLastError();
  if (led_mutex == nullptr) {
    led_mutex = mutex;
  } else {
    CloseHandle(mutex);
  }
  if (on_timeout_event == nullptr) {
    on_timeout_event = CreateEventW(nullptr, FALSE, FALSE, TEXT("LED_ON_TIMEOUT"));
  }
  return S_OK;
}

HRESULT PALAPI PALLEDTerm() {
  const HRESULT result = WaitFor(led_mutex);
  if (led_mutex != nullptr) {
    ReleaseMutex(led_mutex);
    CloseHandle(led_mutex);
    led_mutex = nullptr;
  }
  if (on_timeout_event != nullptr) {
    CloseHandle(on_timeout_event);
    on_timeout_event = nullptr;
  }
  return result;
}

HRESULT PALAPI PALLEDNotificationOn() {
  return SwitchLed(0, 1);
}
HRESULT PALAPI PALLEDNotificationOff() {
  return SwitchLed(0, 0);
}
HRESULT PALAPI PALLEDGrLedOn() {
  return SwitchLed(3, 1);
}
HRESULT PALAPI PALLEDGrLedOff() {
  return SwitchLed(3, 0);
}
HRESULT PALAPI PALLEDSysLightOn() {
  return SwitchLed(6, 1);
}
HRESULT PALAPI PALLEDSysLightOff() {
  return SwitchLed(6, 0);
}
HRESULT PALAPI PALLEDSysLightBlinkStart() {
  return SwitchLed(6, 2);
}
HRESULT PALAPI PALLEDSysLightBlinkStop() {
  return SwitchLed(6, 0);
}

HRESULT PALAPI PALLEDGrLedToggle(DWORD scan_type) {
  static const WCHAR* const durations[] = {TEXT("IntGrLedOnDur"), TEXT("TethGrLedOnDur"),
                                           TEXT("BTGrLedOnDur"), TEXT("RFIDGrLedOnDur")};
  if (scan_type >= 4) return E_FAIL;
  const HRESULT result = WaitFor(led_mutex);
  if (result < 0) return result;
  DWORD duration = 0;
  if (ReadDword(HKEY_LOCAL_MACHINE, kSettings, durations[scan_type], &duration) < 0 ||
      duration == INFINITE) {
    duration = 250;
  }
  SetLed(3, 1);
  if (on_timeout_event != nullptr) {
    WaitForSingleObject(on_timeout_event, duration);
  } else {
    Sleep(duration);
  }
  SetLed(3, 0);
  ReleaseMutex(led_mutex);
  return S_OK;
}

HRESULT PALAPI PALLEDGrLedGetState(DWORD scan_type, DWORD* state) {
  static const WCHAR* const states[] = {TEXT("IntGrLed"), TEXT("TethGrLed"), TEXT("BTGrLed"),
                                        TEXT("RFIDGrLed")};
  if (scan_type >= 4 || state == nullptr) return E_FAIL;
  HRESULT result = WaitFor(led_mutex);
  if (result < 0) return result;
  result = ReadDword(HKEY_LOCAL_MACHINE, kSettings, states[scan_type], state);
  ReleaseMutex(led_mutex);
  return result;
}

HRESULT PALAPI PALLEDIsGrLedOn() {
  NLED_SETTINGS_INFO settings;
  memset(&settings, 0, sizeof(settings));
  settings.LedNum = 3;
  NLedGetDeviceInfo(NLED_SETTINGS_INFO_ID, &settings);
  return settings.OffOnBlink == 1 ? S_OK : E_FAIL;
}

HRESULT PALAPI PALVIBIsInstalled() {
  HRESULT result = S_OK;
  NLED_SUPPORTS_INFO supports;
  for (UINT number = 0; number < 10; ++number) {
    memset(&supports, 0, sizeof(supports));
    supports.LedNum = number;
    if (NLedGetDeviceInfo(NLED_SUPPORTS_INFO_ID, &supports) == FALSE) {
      result = E_FAIL;
    } else if (supports.lCycleAdjust == -1) {
      return S_OK;
    }
  }
  return result;
}

HRESULT PALAPI PALVIBSetVibratePreset(DWORD preset) {
  return WriteDword(HKEY_LOCAL_MACHINE, kSettings, TEXT("VibratePresetIndex"), preset);
}

HRESULT PALAPI PALVIBGetVibratePreset(DWORD* preset) {
  if (preset == nullptr) return E_FAIL;
  return ReadDword(HKEY_LOCAL_MACHINE, kSettings, TEXT("VibratePresetIndex"), preset);
}

HRESULT PALAPI PALVIBVibrate(DWORD /*ignored*/) {
  DWORD preset = 0;
  const HRESULT result =
      ReadDword(HKEY_LOCAL_MACHINE, kSettings, TEXT("VibratePresetIndex"), &preset);
  if (result < 0) return result;
  if (preset < 1 || preset > 9) return E_FAIL;
  return SetLed(preset - 900, 2) != FALSE ? result : E_FAIL;
}
