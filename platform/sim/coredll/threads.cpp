// Calls that nothing simulates yet: they fail and are recorded as misuse, so that nothing pretends.
#include "platform/sim/coredll/call.h"

using sim::CallId;
using sim::NotSimulated;

HANDLE CreateThread(LPSECURITY_ATTRIBUTES /*security*/, DWORD /*stack_bytes*/,
                    LPTHREAD_START_ROUTINE /*start*/, LPVOID /*argument*/, DWORD /*flags*/,
                    LPDWORD /*thread_id*/) {
  return NotSimulated<HANDLE>(CallId::CreateThread, nullptr);
}

void FreeLibraryAndExitThread(HMODULE /*module*/, DWORD /*exit_code*/) {
  NotSimulated(CallId::FreeLibraryAndExitThread, 0);
}
