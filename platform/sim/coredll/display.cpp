// Calls that nothing simulates yet: they fail and are recorded as misuse, so that nothing pretends.
#include "platform/sim/coredll/call.h"

using sim::CallId;
using sim::NotSimulated;

LONG ChangeDisplaySettingsEx(LPCWSTR /*device*/, DEVMODEW* /*mode*/, HWND /*unused*/,
                             DWORD /*flags*/, LPVOID /*parameter*/) {
  return NotSimulated(CallId::ChangeDisplaySettingsEx, LONG{-1});
}
