// The rotation of the screen.
#include <algorithm>
#include <array>

#include "frame/registry.h"
#include "frame/result.h"
#include "frame/trace.h"
#include "include/paldisp.h"

namespace pal {
namespace {

struct Orientation {
  LONG angle;
  DWORD code;  // the platform's
};
constexpr std::array<Orientation, 4> kOrientations{
    {{0, DMDO_0}, {90, DMDO_90}, {180, DMDO_180}, {270, DMDO_270}}};

DEVMODEW OrientationMode(DWORD code) {
  DEVMODEW mode{};
  mode.dmSize = sizeof(mode);
  mode.dmFields = DM_DISPLAYORIENTATION;
  mode.dmDisplayOrientation = code;
  return mode;
}

HRESULT PALSetScreenOrientation(LONG angle) {
  kDisplayTrace.Info("PALDISPSetOrientation - PALSetScreenOrientation(%d)\r\n", angle);
  const auto* const wanted = std::ranges::find(kOrientations, angle, &Orientation::angle);
  if (wanted == kOrientations.end()) {
    kDisplayTrace.Error("PALSetScreenOrientation - ERROR input.  in: %d\r\n", angle);
    return PAL_DISP_E_NO_SUCH_ORIENTATION;
  }
  DEVMODEW mode = OrientationMode(wanted->code);
  SetLastError(ERROR_SUCCESS);
  const DWORD begin = GetTickCount();
  const LONG change = ChangeDisplaySettingsEx(nullptr, &mode, nullptr, CDS_RESET, nullptr);
  kDisplayTrace.Info(
      "PALSetScreenOrientation - 0x%x=ChangeDisplaySettingsEx(reg_angle:%d[os_angle:%d]). "
      "dur: %d\r\n",
      change, angle, wanted->code, GetTickCount() - begin);
  if (change != DISP_CHANGE_SUCCESSFUL) return PAL_DISP_E_CHANGE_REFUSED;
  return PALRegSetDword(HKEY_LOCAL_MACHINE, TEXT("System\\GDI\\Rotation"), TEXT("Angle"),
                        static_cast<DWORD>(angle));
}

// Reads the driver and not the registry: other programs turn the screen too.
HRESULT PALGetScreenOrientation(LONG* angle) {
  DEVMODEW mode = OrientationMode(DMDO_0);
  const LONG test = ChangeDisplaySettingsEx(nullptr, &mode, nullptr, CDS_TEST, nullptr);
  if (test != DISP_CHANGE_SUCCESSFUL) {
    kDisplayTrace.Error("PALGetScreenOrientation - ERROR 0x%x=ChangeDisplaySettingsEx()\r\n", test);
    return E_FAIL;
  }
  const auto* const current =
      std::ranges::find(kOrientations, mode.dmDisplayOrientation, &Orientation::code);
  LONG degrees = 0;
  if (current != kOrientations.end()) {
    degrees = current->angle;
  } else {
    kDisplayTrace.Error("PALGetScreenOrientation - ERROR invalid sys val: %d\r\n",
                        mode.dmDisplayOrientation);
  }
  kDisplayTrace.Info("PALGetScreenOrientation - Cur orientation:%d\r\n", degrees);
  *angle = degrees;
  return S_OK;
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALDISPSetOrientation(LONG angle) {
  return pal::PALSetScreenOrientation(angle);
}

HRESULT PALAPI PALDISPGetOrientation(LONG* angle) {
  return angle == nullptr ? E_FAIL : pal::PALGetScreenOrientation(angle);
}
