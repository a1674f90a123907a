// The power manager's idle timers.
#include "platform/sim/coredll/call.h"

using sim::Call;
using sim::CallId;
using sim::Effect;

void SystemIdleTimerReset() {
  Call call(CallId::SystemIdleTimerReset);
  if (call.fault() == 0) call.Log(Effect::kPower, "idle timers reset");
}
