// Calls that nothing simulates yet: they fail and are recorded as misuse, so that nothing pretends.
#include "platform/sim/coredll/call.h"

using sim::CallId;
using sim::NotSimulated;

BOOL NLedGetDeviceInfo(UINT /*info_id*/, void* /*output*/) {
  return NotSimulated(CallId::NLedGetDeviceInfo, FALSE);
}

BOOL NLedSetDevice(UINT /*device_id*/, void* /*input*/) {
  return NotSimulated(CallId::NLedSetDevice, FALSE);
}
