// The display driver, which turns the screen.
#include <fmt/format.h>

#include <algorithm>

#include "platform/sim/coredll/call.h"

using sim::Call;
using sim::CallId;
using sim::Effect;

// Only the orientation of a display mode is simulated. With CDS_TEST the call gives the present
// orientation and changes nothing.
LONG ChangeDisplaySettingsEx(LPCWSTR device, DEVMODEW* mode, HWND window, DWORD flags,
                             LPVOID parameter) {
  Call call(CallId::ChangeDisplaySettingsEx);
  if (call.fault() != 0) return call.Fail(call.fault(), DISP_CHANGE_FAILED);
  const bool usable = device == nullptr && mode != nullptr && window == nullptr &&
                      parameter == nullptr && mode->dmSize == sizeof(*mode) &&
                      mode->dmFields == DM_DISPLAYORIENTATION;
  if (!usable) return DISP_CHANGE_BADPARAM;
  if (flags != CDS_TEST && flags != CDS_RESET) {
    call.Misuse(fmt::format("was given the flags {:#x}", flags));
    return DISP_CHANGE_BADFLAGS;
  }
  sim::Display& display = call.kernel().hardware.display;
  if (flags == CDS_TEST) {
    mode->dmDisplayOrientation = display.orientation();
    return call.Answer(mode->dmDisplayOrientation) == ERROR_SUCCESS ? DISP_CHANGE_SUCCESSFUL
                                                                    : DISP_CHANGE_FAILED;
  }
  const auto* const wanted =
      std::ranges::find(sim::kRotations, mode->dmDisplayOrientation, &sim::Rotation::code);
  if (wanted == sim::kRotations.end() ||
      std::ranges::find(display.orientations, wanted->code) == display.orientations.end()) {
    return DISP_CHANGE_BADMODE;
  }
  display.turned_to = wanted->code;
  call.Log(Effect::kDisplay, fmt::format("rotation {}", wanted->degrees));
  return DISP_CHANGE_SUCCESSFUL;
}
