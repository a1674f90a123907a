// The vibrator: whether there is one, its preset, and a vibration.
#include "feedback/notification_led.h"
#include "frame/registry.h"
#include "frame/result.h"
#include "frame/trace.h"
#include "include/palvib.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kVibrator};

// The place of the preset, shared by all processes that have the library loaded. Nothing else is in
// this section. Not const: the linker may put constants elsewhere.
[[gnu::section(".shared")]] constinit WCHAR preset_key[] = TEXT("SOFTWARE\\Dravonel\\PAL");
[[gnu::section(".shared")]] constinit WCHAR preset_value[] = TEXT("VibratePresetIndex");

constexpr DWORD kFirstPreset = 1;
constexpr DWORD kLastPreset = 9;
// The LED number of preset n is this and n: -899 to -891.
constexpr LONG kPresetBase = -900;

constexpr UINT kLedNumbers = 10;
constexpr LONG kVibratorCycleAdjust = -1;

HRESULT ReadPreset(DWORD& preset) {
  return PALRegGetDword(HKEY_LOCAL_MACHINE, preset_key, preset_value, &preset);
}

HRESULT SetVibrateWithPreset() {
  DWORD preset = 0;
  const HRESULT result = ReadPreset(preset);
  if (Failed(result)) {
    kTrace.Error("SetVibrateWithPreset - Unable to read preset index. hr: 0x%x\r\n", result);
    return result;
  }
  if (preset < kFirstPreset || preset > kLastPreset) return E_FAIL;
  const LONG number = kPresetBase + static_cast<LONG>(preset);
  kTrace.Info("SetVibrateWithPreset - System vibrate preset: %d\r\n", number);
  if (!SetNotificationLed(number, kLedBlink)) {
    kTrace.Error("SetVibrateWithPreset: NLedSetDevice error. fStat: %d\r\n", FALSE);
    return E_FAIL;
  }
  return result;
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALVIBIsInstalled() {
  HRESULT result = S_OK;
  for (UINT number = 0; number < pal::kLedNumbers; ++number) {
    NLED_SUPPORTS_INFO supports{};
    supports.LedNum = number;
    if (NLedGetDeviceInfo(NLED_SUPPORTS_INFO_ID, &supports) == FALSE) {
      result = E_FAIL;
      pal::kTrace.Error("IsVibrateInstalled - ERROR NLedGetDeviceInfo. LEDIndex:%d\r\n", number);
    } else if (supports.lCycleAdjust == pal::kVibratorCycleAdjust) {
      pal::kTrace.Info("IsVibrateInstalled - Vibrate was found. LEDIndex:%d\r\n", number);
      return S_OK;
    }
  }
  return result;
}

HRESULT PALAPI PALVIBSetVibratePreset(DWORD preset) {
  pal::kTrace.Info("SetVibratePreset - Vibrate preset index: %d\r\n", preset);
  const HRESULT result =
      pal::PALRegSetDword(HKEY_LOCAL_MACHINE, pal::preset_key, pal::preset_value, preset);
  if (pal::Failed(result)) {
    pal::kTrace.Error("SetVibratePreset - ERROR cannot write preset: %d, to reg. hr: 0x%x\r\n",
                      preset, result);
  }
  return result;
}

HRESULT PALAPI PALVIBGetVibratePreset(DWORD* preset) {
  if (preset == nullptr) return E_FAIL;
  const HRESULT result = pal::ReadPreset(*preset);
  if (pal::Failed(result)) {
    pal::kTrace.Error("GetVibratePreset - ERROR reading preset index. hr: 0x%x\r\n", result);
  }
  return result;
}

// Also exported as PALVIBVibrateEx.
HRESULT PALAPI PALVIBVibrate(DWORD /*ignored*/) {
  const HRESULT result = pal::SetVibrateWithPreset();
  if (pal::Failed(result)) pal::kTrace.Error("Vibrate - Vibrate failed. hr: 0x%x\r\n", result);
  return result;
}
