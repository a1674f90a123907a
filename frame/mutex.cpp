#include "frame/mutex.h"

#include "frame/result.h"
#include "frame/trace.h"

namespace pal {

HRESULT PALWaitForMutex(Facility facility, HANDLE mutex, DWORD timeout_ms) {
  const TraceSource trace(facility);
  if (mutex == nullptr || mutex == INVALID_HANDLE_VALUE) {
    trace.Error("PALWaitForMutex - ERROR invalid mutex. hMutex: 0x%x\r\n", mutex);
    return E_INVALIDARG;
  }
  const DWORD start = GetTickCount();
  const DWORD wait = WaitForSingleObject(mutex, timeout_ms);
  const DWORD duration_ms = GetTickCount() - start;
  if (wait == WAIT_TIMEOUT) {
    trace.Error("PALWaitForMutex - ERROR timeout. hMutex: 0x%x, ret: 0x%x, dur: %d\r\n", mutex,
                wait, duration_ms);
  } else if (wait != WAIT_OBJECT_0) {
    trace.Error("PALWaitForMutex - ERROR abandoned. hMutex: 0x%x, ret: 0x%x, dur: %d\r\n", mutex,
                wait, duration_ms);
  }
  return S_OK;
}

HRESULT PALReleaseMutexIfValid(Facility facility, HANDLE mutex) {
  const TraceSource trace(facility);
  if (mutex == nullptr) {
    trace.Error("PALReleaseMutexIfValid - ERROR. Mutex not valid. hMutex: 0x%x\r\n", mutex);
    return S_FALSE;
  }
  if (ReleaseMutex(mutex)) return S_OK;
  const DWORD error = GetLastError();
  trace.Error(
      "PALReleaseMutexIfValid - ERROR. Cannot release mutex. hMutex: 0x%x win32err: 0x%x\r\n",
      mutex, error);
  return HResultFromWin32(error);
}

}  // namespace pal
