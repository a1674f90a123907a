#include "bench/hand_written/audio_setting.h"
#include "bench/hand_written/registry.h"
#include "include/paldisp.h"

namespace {

constexpr const WCHAR* kDisplay = TEXT("ControlPanel\\Backlight");
constexpr const WCHAR* kKeypad = TEXT("ControlPanel\\Backlight\\Keyboard");
constexpr const WCHAR* kPanel = TEXT("ControlPanel\\SIP");
constexpr HRESULT kWriteFailed = static_cast<HRESULT>(0x83EE0008);
constexpr HRESULT kBadAngle = static_cast<HRESULT>(0x83EE0001);
constexpr HRESULT kChangeRefused = static_cast<HRESULT>(0x83EE0002);

constinit BOOL initialised = FALSE;

HRESULT WriteLevel(const WCHAR* path, const WCHAR* name, DWORD level) {
  const HRESULT result = WriteDword(HKEY_CURRENT_USER, path, name, level);
  return result < 0 ? kWriteFailed : result;
}

HRESULT WriteBrightness(const WCHAR* name, DWORD level) {
  if (level < 1 || level > 5) return E_FAIL;
  return WriteLevel(kDisplay, name, level);
}

HRESULT ReadLevel(const WCHAR* path, const WCHAR* name, DWORD* level) {
  if (level == nullptr) return E_FAIL;
  return ReadDword(HKEY_CURRENT_USER, path, name, level);
}

LONG ChangeOrientation(DEVMODEW* mode, DWORD code, DWORD flags) {
  memset(mode, 0, sizeof(*mode));
  mode->dmSize = sizeof(*mode);
  mode->dmFields = DM_DISPLAYORIENTATION;
  mode->dmDisplayOrientation = code;
  return ChangeDisplaySettingsEx(nullptr, mode, nullptr, flags, nullptr);
}

}  // namespace

HRESULT PALAPI PALDISPInit() {
  initialised = TRUE;
  return S_OK;
}

HRESULT PALAPI PALDISPTerm() {
  initialised = FALSE;
  return S_OK;
}

HRESULT PALAPI PALDISPSetDisplayBrightnessAmbient(DWORD level) {
  return WriteBrightness(TEXT("AmbientDeltaIndex"), level);
}
HRESULT PALAPI PALDISPGetDisplayBrightnessAmbient(DWORD* level) {
  return ReadLevel(kDisplay, TEXT("AmbientDeltaIndex"), level);
}
HRESULT PALAPI PALDISPSetLowLightDisplayBrightnessDelta(DWORD level) {
  return WriteBrightness(TEXT("AmbientDeltaIndexLow"), level);
}
HRESULT PALAPI PALDISPGetLowLightDisplayBrightnessDelta(DWORD* level) {
  return ReadLevel(kDisplay, TEXT("AmbientDeltaIndexLow"), level);
}
HRESULT PALAPI PALDISPSetBrightLightDisplayBrightnessDelta(DWORD level) {
  return WriteBrightness(TEXT("AmbientDeltaIndexHigh"), level);
}
HRESULT PALAPI PALDISPGetBrightLightDisplayBrightnessDelta(DWORD* level) {
  return ReadLevel(kDisplay, TEXT("AmbientDeltaIndexHigh"), level);
}

HRESULT PALAPI PALDISPSetKeypadBacklightMode(DWORD mode) {
  if (mode != 0 && mode != 2 && mode != 4) return E_FAIL;
  return WriteLevel(kKeypad, TEXT("Mode"), mode);
}
HRESULT PALAPI PALDISPGetKeypadBacklightMode(DWORD* mode) {
  return ReadLevel(kKeypad, TEXT("Mode"), mode);
}
HRESULT PALAPI PALDISPSetKeypadBacklightAmbient(DWORD threshold) {
  if (threshold > 1) return E_FAIL;
  return WriteLevel(kKeypad, TEXT("AmbientThreshold"), threshold);
}
HRESULT PALAPI PALDISPGetKeypadBacklightAmbient(DWORD* threshold) {
  return ReadLevel(kKeypad, TEXT("AmbientThreshold"), threshold);
}

HRESULT PALAPI PALDISPSetOrientation(LONG angle) {
  DWORD code = 0;
  switch (angle) {
    case 0:
      code = DMDO_0;
      break;
    case 90:
      code = DMDO_90;
      break;
    case 180:
      code = DMDO_180;
      break;
    case 270:
      code = DMDO_270;
      break;
    default:
      return kBadAngle;
  }
  DEVMODEW mode;
  const DWORD start = GetTickCount();
  const LONG change = ChangeOrientation(&mode, code, CDS_RESET);
  const DWORD duration_ms = GetTickCount() - start;
  if (change != DISP_CHANGE_SUCCESSFUL) {
    NKDbgPrintfW(TEXT("refused after %d ms\r\n"), duration_ms);
    return kChangeRefused;
  }
  return WriteDword(HKEY_LOCAL_MACHINE, TEXT("System\\GDI\\Rotation"), TEXT("Angle"),
                    static_cast<DWORD>(angle));
}

HRESULT PALAPI PALDISPGetOrientation(LONG* angle) {
  if (angle == nullptr) return E_FAIL;
  DEVMODEW mode;
  if (ChangeOrientation(&mode, DMDO_0, CDS_TEST) != DISP_CHANGE_SUCCESSFUL) return E_FAIL;
  switch (mode.dmDisplayOrientation) {
    case DMDO_90:
      *angle = 90;
      break;
    case DMDO_180:
      *angle = 180;
      break;
    case DMDO_270:
      *angle = 270;
      break;
    default:
      *angle = 0;
      break;
  }
  return S_OK;
}

HRESULT PALAPI PALDISPGetSIPDock(DWORD* style) {
  if (style == nullptr) return E_FAIL;
  const HRESULT result = ReadDword(HKEY_CURRENT_USER, kPanel, TEXT("DragStyle"), style);
  if (result < 0) *style = 0;
  return result;
}

HRESULT PALAPI PALDISPSetSIPDock(DWORD style) {
  HKEY key = nullptr;
  DWORD disposition = 0;
  LONG error =
      RegCreateKeyExW(HKEY_CURRENT_USER, kPanel, 0, nullptr, 0, 0, nullptr, &key, &disposition);
  if (error != ERROR_SUCCESS) return ResultOf(error);
  error = RegSetValueExW(key, TEXT("DragStyle"), 0, REG_DWORD,
                         reinterpret_cast<const BYTE*>(&style), sizeof(style));
  RegCloseKey(key);
  return ResultOf(error);
}

HRESULT PALAPI PALDISPSetScreenTapVol(DWORD level) {
  return WriteTapVolume(TEXT("Screen"), level);
}
HRESULT PALAPI PALDISPGetScreenTapVol(DWORD* level) {
  return ReadTapVolume(TEXT("Screen"), level);
}
