// The click of a key.
#include "frame/tap_volume.h"
#include "include/palkey.h"
#include "keypad/keypad_trace.h"

namespace {

// The lines have the screen tap's family in their name, and the getter the setter's: kept so.
constexpr pal::TapVolume kKeyTapVolume{
    pal::kKeypadTrace,
    TEXT("Key"),
    "PALDISPSetKeyTapVol - Input invalid.  input:%d\r\n",
    "PALDISPSetKeyTapVol - Could not set reg key: %ls\\%ls\r\n",
    "PALDISPSetKeyTapVol - Could not read reg key: %ls\\%ls\r\n",
};

}  // namespace

HRESULT PALAPI PALKEYSetKeyTapVol(DWORD level) {
  return pal::SetTapVolume(kKeyTapVolume, level);
}

HRESULT PALAPI PALKEYGetKeyTapVol(DWORD* level) {
  return pal::GetTapVolume(kKeyTapVolume, level);
}
