// Brightness of the display and of the keypad's backlight: five values that the backlight drivers
// read.
#include <algorithm>
#include <array>
#include <span>

#include "frame/registry.h"
#include "frame/result.h"
#include "frame/trace.h"
#include "include/paldisp.h"

namespace pal {
namespace {

constexpr const WCHAR* kDisplayKey = TEXT("ControlPanel\\Backlight");
constexpr const WCHAR* kKeypadKey = TEXT("ControlPanel\\Backlight\\Keyboard");

constexpr std::array<DWORD, 5> kBrightnessLevels{1, 2, 3, 4, 5};
constexpr std::array<DWORD, 3> kKeypadModes{0, 2, 4};
constexpr std::array<DWORD, 2> kKeypadThresholds{0, 1};

using NumberFormat = TraceSource::Format<DWORD>;

struct LevelSetting {
  const WCHAR* key;  // under HKEY_CURRENT_USER
  const WCHAR* value_name;
  std::span<const DWORD> accepted;
  // The display's lines are all informational, also those that say ERROR: log filters rely on it.
  Severity failure_severity;
  NumberFormat invalid;
  NumberFormat set;
  // Two of these lines name another value than the one that is written; log readers match them.
  NumberFormat write_failed;
  NumberFormat read_failed;
  NumberFormat get;
};

constexpr LevelSetting kDisplayAmbient{
    kDisplayKey,
    TEXT("AmbientDeltaIndex"),
    kBrightnessLevels,
    Severity::kInfo,
    "SetDisplayBrightnessAmbient - ERROR level invalid user_level: 0x%x\r\n",
    "SetDisplayBrightnessAmbient - cur_level: %d\r\n",
    "SetDisplayBrightnessAmbient - ERROR setting reg key AmbientDeltaIndex. hr: 0x%x\r\n",
    "GetDisplayBrightnessAmbient - ERROR reading level. hr: 0x%x\r\n",
    "GetDisplayBrightnessAmbient - cur_level: %d\r\n"};

constexpr LevelSetting kLowLightDelta{
    kDisplayKey,
    TEXT("AmbientDeltaIndexLow"),
    kBrightnessLevels,
    Severity::kInfo,
    "PALDISPSetLowLightDisplayBrightnessDelta - ERROR level invalid user_level: 0x%x\r\n",
    "PALDISPSetLowLightDisplayBrightnessDelta - cur_level: %d\r\n",
    "PALDISPSetLowLightDisplayBrightnessDelta - ERROR setting reg key AmbientDeltaIndexLow. "
    "hr: 0x%x\r\n",
    "PALDISPGetLowLightDisplayBrightnessDelta - ERROR reading level. hr: 0x%x\r\n",
    "PALDISPGetLowLightDisplayBrightnessDelta - cur_level: %d\r\n"};

constexpr LevelSetting kBrightLightDelta{
    kDisplayKey,
    TEXT("AmbientDeltaIndexHigh"),
    kBrightnessLevels,
    Severity::kInfo,
    "PALDISPSetBrightLightDisplayBrightnessDelta - ERROR level invalid user_level: 0x%x\r\n",
    "PALDISPSetBrightLightDisplayBrightnessDelta - cur_level: %d\r\n",
    "PALDISPSetBrightLightDisplayBrightnessDelta - ERROR setting reg key AmbientDeltaIndexHigh. "
    "hr: 0x%x\r\n",
    "PALDISPGetBrightLightDisplayBrightnessDelta - ERROR reading level. hr: 0x%x\r\n",
    "PALDISPGetBrightLightDisplayBrightnessDelta - cur_level: %d\r\n"};

constexpr LevelSetting kKeypadMode{
    kKeypadKey,
    TEXT("Mode"),
    kKeypadModes,
    Severity::kError,
    "SetKeypadBacklightMode - ERROR level invalid user_level: 0x%x\r\n",
    "SetKeypadBacklightMode - cur_level: %d\r\n",
    "SetKeypadBacklightMode - ERROR setting reg key AmbientDeltaIndex. hr: 0x%x\r\n",
    "GetKeypadBacklightMode - ERROR reading level. hr: 0x%x\r\n",
    "GetKeypadBacklightMode - cur_level: %d\r\n"};

constexpr LevelSetting kKeypadAmbient{
    kKeypadKey,
    TEXT("AmbientThreshold"),
    kKeypadThresholds,
    Severity::kError,
    "SetKeypadBacklightAmbient - ERROR level invalid user_level: 0x%x\r\n",
    "SetKeypadBacklightAmbient - cur_level: %d\r\n",
    "SetKeypadBacklightAmbient - ERROR setting reg key AmbientDeltaIndex. hr: 0x%x\r\n",
    "GetKeypadBacklightAmbient - ERROR reading level. hr: 0x%x\r\n",
    "GetKeypadBacklightAmbient - cur_level: %d\r\n"};

HRESULT Set(const LevelSetting& setting, DWORD level) {
  if (std::ranges::find(setting.accepted, level) == setting.accepted.end()) {
    kDisplayTrace.Write(setting.failure_severity, setting.invalid, level);
    return E_FAIL;
  }
  kDisplayTrace.Info(setting.set, level);
  const HRESULT result = PALRegSetDword(HKEY_CURRENT_USER, setting.key, setting.value_name, level);
  if (Succeeded(result)) return result;
  kDisplayTrace.Write(setting.failure_severity, setting.write_failed,
                      static_cast<DWORD>(PAL_DISP_E_WRITE_FAILED));
  return PAL_DISP_E_WRITE_FAILED;
}

HRESULT Get(const LevelSetting& setting, DWORD* level) {
  if (level == nullptr) return E_FAIL;
  const HRESULT result = PALRegGetDword(HKEY_CURRENT_USER, setting.key, setting.value_name, level);
  if (Failed(result)) {
    kDisplayTrace.Write(setting.failure_severity, setting.read_failed, static_cast<DWORD>(result));
    return result;
  }
  kDisplayTrace.Info(setting.get, *level);
  return result;
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALDISPSetDisplayBrightnessAmbient(DWORD level) {
  return pal::Set(pal::kDisplayAmbient, level);
}
HRESULT PALAPI PALDISPGetDisplayBrightnessAmbient(DWORD* level) {
  return pal::Get(pal::kDisplayAmbient, level);
}
HRESULT PALAPI PALDISPSetLowLightDisplayBrightnessDelta(DWORD level) {
  return pal::Set(pal::kLowLightDelta, level);
}
HRESULT PALAPI PALDISPGetLowLightDisplayBrightnessDelta(DWORD* level) {
  return pal::Get(pal::kLowLightDelta, level);
}
HRESULT PALAPI PALDISPSetBrightLightDisplayBrightnessDelta(DWORD level) {
  return pal::Set(pal::kBrightLightDelta, level);
}
HRESULT PALAPI PALDISPGetBrightLightDisplayBrightnessDelta(DWORD* level) {
  return pal::Get(pal::kBrightLightDelta, level);
}
HRESULT PALAPI PALDISPSetKeypadBacklightMode(DWORD mode) {
  return pal::Set(pal::kKeypadMode, mode);
}
HRESULT PALAPI PALDISPGetKeypadBacklightMode(DWORD* mode) {
  return pal::Get(pal::kKeypadMode, mode);
}
HRESULT PALAPI PALDISPSetKeypadBacklightAmbient(DWORD threshold) {
  return pal::Set(pal::kKeypadAmbient, threshold);
}
HRESULT PALAPI PALDISPGetKeypadBacklightAmbient(DWORD* threshold) {
  return pal::Get(pal::kKeypadAmbient, threshold);
}
