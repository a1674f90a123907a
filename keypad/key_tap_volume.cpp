// The click of a key.
#include "frame/tap_volume.h"
#include "frame/trace.h"
#include "include/palkey.h"

namespace pal {
namespace {

// The lines name the display family, and the getter's line the setter: log readers match them.
constexpr TapVolume kKeyTapVolume{
    kKeypadTrace,
    TEXT("Key"),
    "PALDISPSetKeyTapVol - Input invalid.  input:%d\r\n",
    "PALDISPSetKeyTapVol - Could not set reg key: %ls\\%ls\r\n",
    "PALDISPSetKeyTapVol - Could not read reg key: %ls\\%ls\r\n",
};

}  // namespace
}  // namespace pal

HRESULT PALAPI PALKEYSetKeyTapVol(DWORD level) {
  return pal::SetTapVolume(pal::kKeyTapVolume, level);
}

HRESULT PALAPI PALKEYGetKeyTapVol(DWORD* level) {
  return pal::GetTapVolume(pal::kKeyTapVolume, level);
}
