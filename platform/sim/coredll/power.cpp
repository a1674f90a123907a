// Calls that nothing simulates yet: they fail and are recorded as misuse, so that nothing pretends.
#include "platform/sim/coredll/call.h"

using sim::CallId;
using sim::NotSimulated;

DWORD SetSystemPowerState(LPCWSTR /*state*/, DWORD /*flags*/, DWORD /*options*/) {
  return NotSimulated(CallId::SetSystemPowerState, static_cast<DWORD>(ERROR_CALL_NOT_IMPLEMENTED));
}

void SystemIdleTimerReset() {
  NotSimulated(CallId::SystemIdleTimerReset, 0);
}
