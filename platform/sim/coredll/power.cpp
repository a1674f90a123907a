// Calls that nothing simulates yet: they fail and are recorded as misuse, so that nothing pretends.
#include "platform/sim/coredll/call.h"

using sim::CallId;
using sim::NotSimulated;

void SystemIdleTimerReset() {
  NotSimulated(CallId::SystemIdleTimerReset, 0);
}
