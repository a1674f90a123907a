// Calls that nothing simulates yet: they fail and are recorded as misuse, so that nothing pretends.
#include "platform/sim/coredll/call.h"

using sim::CallId;
using sim::NotSimulated;

DWORD GetNumberOfInterfaces(LPDWORD /*count*/) {
  return NotSimulated(CallId::GetNumberOfInterfaces,
                      static_cast<DWORD>(ERROR_CALL_NOT_IMPLEMENTED));
}

DWORD GetIfEntry(MIB_IFROW* /*row*/) {
  return NotSimulated(CallId::GetIfEntry, static_cast<DWORD>(ERROR_CALL_NOT_IMPLEMENTED));
}
