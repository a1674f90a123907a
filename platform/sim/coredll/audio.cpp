// Calls that nothing simulates yet: they fail and are recorded as misuse, so that nothing pretends.
#include "platform/sim/coredll/call.h"

using sim::CallId;
using sim::NotSimulated;

MMRESULT waveOutGetVolume(HWAVEOUT /*output*/, LPDWORD /*volume*/) {
  return NotSimulated(CallId::waveOutGetVolume, MMRESULT{1});
}

MMRESULT waveOutSetVolume(HWAVEOUT /*output*/, DWORD /*volume*/) {
  return NotSimulated(CallId::waveOutSetVolume, MMRESULT{1});
}

MMRESULT waveInMessage(HWAVEIN /*input*/, UINT /*message*/, uintptr_t /*parameter1*/,
                       uintptr_t /*parameter2*/) {
  return NotSimulated(CallId::waveInMessage, MMRESULT{1});
}

BOOL PlaySoundW(LPCWSTR /*sound*/, HMODULE /*module*/, DWORD /*flags*/) {
  return NotSimulated(CallId::PlaySoundW, FALSE);
}
