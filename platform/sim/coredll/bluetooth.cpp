// Calls that nothing simulates yet: they fail and are recorded as misuse, so that nothing pretends.
#include "platform/sim/coredll/call.h"

using sim::CallId;
using sim::NotSimulated;

int BthGetMode(LPDWORD /*mode*/) {
  return NotSimulated(CallId::BthGetMode, ERROR_CALL_NOT_IMPLEMENTED);
}
