// Control keys that can be switched off.
#include <array>

#include "frame/registry.h"
#include "frame/result.h"
#include "frame/trace.h"
#include "include/palkey.h"

namespace pal {
namespace {

// Spelled otherwise than kKeyboardPath; the registry ignores case.
constexpr const WCHAR* kControlKeyPath = TEXT("Hardware\\DeviceMap\\Keybd");

struct ControlKeyValues {
  const WCHAR* first;
  const WCHAR* second;  // null where one value is all
};

// By PALControlKey.
constexpr std::array<ControlKeyValues, PAL_CONTROL_KEY_ALT_TAB + 1> kControlKeys = {{
    {TEXT("VolumeKeyEnable"), nullptr},
    {TEXT("ContrastKeyEnable"), TEXT("HighContrastKeyEnable")},
    {TEXT("BacklightKeyEnable"), nullptr},
    {TEXT("AltTabEnable"), nullptr},
}};

HRESULT WriteState(const WCHAR* value_name, LONG key, DWORD state) {
  kKeypadTrace.Info("PALKEYContolKeyState - control key. reg: %ls, key: %d, state: 0x%x\r\n",
                    value_name, key, state);
  const HRESULT result =
      PALRegSetDword(HKEY_LOCAL_MACHINE, kControlKeyPath, value_name, state != 0 ? 1 : 0);
  if (Failed(result)) {
    kKeypadTrace.Error(
        "PALKEYContolKeyState - ERROR control key. key: %d, state: 0x%x, hr: 0x%X\r\n", key, state,
        result);
  }
  return result;
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALKEYControlKeyState(LONG key, DWORD state) {
  const auto row = static_cast<DWORD>(key);
  if (row >= pal::kControlKeys.size()) {
    pal::kKeypadTrace.Error("PALKEYControlKeyState - Incorrect key specified. hr: 0x%x\r\n",
                            PAL_KEY_E_NO_SUCH_CONTROL_KEY);
    pal::kKeypadTrace.Error("PALKEYContolKeyState - ERROR copying reg string. hr: 0x%x\r\n",
                            PAL_KEY_E_NO_SUCH_CONTROL_KEY);
    return PAL_KEY_E_NO_SUCH_CONTROL_KEY;
  }
  const pal::ControlKeyValues& values = pal::kControlKeys[row];
  const HRESULT result = pal::WriteState(values.first, key, state);
  return values.second == nullptr ? result : pal::WriteState(values.second, key, state);
}
