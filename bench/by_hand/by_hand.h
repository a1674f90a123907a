// What the calls written by hand have in common. They have no frame and no trace lines: each is
// what one would write for it alone.
#ifndef BENCH_BY_HAND_BY_HAND_H_
#define BENCH_BY_HAND_BY_HAND_H_

#include "platform/wince.h"

// Made when a process attaches.
extern HANDLE beep_mutex;
extern HANDLE led_mutex;

constexpr HRESULT ResultOf(LONG error) {
  return error == ERROR_SUCCESS
             ? S_OK
             : static_cast<HRESULT>(0x80070000U | (static_cast<DWORD>(error) & 0xFFFFU));
}

LONG ReadValue(HKEY root, const WCHAR* path, const WCHAR* name, void* data, DWORD* bytes);
HRESULT ReadNumber(HKEY root, const WCHAR* path, const WCHAR* name, DWORD* number);
HRESULT WriteNumber(HKEY root, const WCHAR* path, const WCHAR* name, DWORD number);

#endif  // BENCH_BY_HAND_BY_HAND_H_
