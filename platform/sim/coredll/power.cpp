// The power manager. A call that nothing simulates yet fails and is recorded as misuse, so that
// nothing pretends.
#include "platform/sim/coredll/call.h"

using sim::Call;
using sim::CallId;
using sim::Effect;
using sim::NotSimulated;

DWORD SetSystemPowerState(LPCWSTR /*state*/, DWORD /*flags*/, DWORD /*options*/) {
  return NotSimulated(CallId::SetSystemPowerState, static_cast<DWORD>(ERROR_CALL_NOT_IMPLEMENTED));
}

void SystemIdleTimerReset() {
  Call call(CallId::SystemIdleTimerReset);
  if (call.fault() == 0) call.Log(Effect::kPower, "idle timers reset");
}
