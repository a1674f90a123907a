// The click of a tap on the screen.
#include "frame/tap_volume.h"
#include "frame/trace.h"
#include "include/paldisp.h"

namespace pal {
namespace {

// The getter's line names the setter; log readers match it.
constexpr TapVolume kScreenTapVolume{
    kDisplayTrace, TEXT("Screen"), "PALDISPSetScreenTapVol - Input invalid.  input:%d\r\n",
    "PALDISPSetScreenTapVol - Could not set reg key: %ls\\%ls\r\n",
    "PALDISPSetScreenTapVol - Could not read reg key: %ls\\%ls\r\n"};

}  // namespace
}  // namespace pal

HRESULT PALAPI PALDISPSetScreenTapVol(DWORD level) {
  return pal::SetTapVolume(pal::kScreenTapVolume, level);
}

HRESULT PALAPI PALDISPGetScreenTapVol(DWORD* level) {
  return pal::GetTapVolume(pal::kScreenTapVolume, level);
}
