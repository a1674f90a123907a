// How the soft input panel is docked.
#include "frame/registry.h"
#include "frame/result.h"
#include "frame/trace.h"
#include "include/paldisp.h"

namespace pal {
namespace {

constexpr const WCHAR* kKey = TEXT("ControlPanel\\SIP");
constexpr const WCHAR* kValueName = TEXT("DragStyle");

}  // namespace
}  // namespace pal

HRESULT PALAPI PALDISPGetSIPDock(DWORD* style) {
  if (style == nullptr) return E_FAIL;
  DWORD stored = 0;
  const HRESULT result =
      pal::PALRegGetDword(HKEY_CURRENT_USER, pal::kKey, pal::kValueName, &stored);
  *style = pal::Succeeded(result) ? stored : 0;
  pal::kDisplayTrace.Info("PALDISPGetSIPDock(): read value=%0x\r\n", *style);
  return result;
}

// Closing the key does not change the last error, so that the line shows the failed call's.
HRESULT PALAPI PALDISPSetSIPDock(DWORD style) {
  SetLastError(ERROR_SUCCESS);
  const HRESULT result =
      pal::PALRegCreateSetDword(HKEY_CURRENT_USER, pal::kKey, pal::kValueName, style);
  if (pal::Failed(result)) {
    pal::kDisplayTrace.Error("PALDISPSetSIPDock() failed to SET, last err.=%0x\r\n",
                             GetLastError());
    return result;
  }
  pal::kDisplayTrace.Info("PALDISPSetSIPDock(): set value=%x\r\n", style);
  return S_OK;
}
