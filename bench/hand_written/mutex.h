// Waiting for a mutex that all processes share.
#ifndef BENCH_HAND_WRITTEN_MUTEX_H_
#define BENCH_HAND_WRITTEN_MUTEX_H_

#include "platform/wince.h"

// S_OK also where the wait timed out: the caller goes on without the mutex.
inline HRESULT WaitFor(HANDLE mutex) {
  if (mutex == nullptr) return E_INVALIDARG;
  const DWORD start = GetTickCount();
  const DWORD wait = WaitForSingleObject(mutex, 2000);
  const DWORD duration_ms = GetTickCount() - start;
  if (wait != WAIT_OBJECT_0) NKDbgPrintfW(TEXT("waited for %d ms in vain\r\n"), duration_ms);
  return S_OK;
}

#endif  // BENCH_HAND_WRITTEN_MUTEX_H_
