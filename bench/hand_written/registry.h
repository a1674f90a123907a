// Single registry values, as one reads and writes them by hand.
#ifndef BENCH_HAND_WRITTEN_REGISTRY_H_
#define BENCH_HAND_WRITTEN_REGISTRY_H_

#include "platform/wince.h"

inline HRESULT ResultOf(LONG error) {
  return error <= 0 ? error
                    : static_cast<HRESULT>(0x80070000U | (static_cast<DWORD>(error) & 0xFFFFU));
}
inline HRESULT ResultOfLastError() {
  return ResultOf(static_cast<LONG>(GetLastError()));
}

HRESULT ReadValue(HKEY root, const WCHAR* path, const WCHAR* name, void* data, DWORD* bytes);
HRESULT ReadDword(HKEY root, const WCHAR* path, const WCHAR* name, DWORD* value);
HRESULT WriteValue(HKEY root, const WCHAR* path, const WCHAR* name, DWORD type, const void* data,
                   DWORD bytes);
HRESULT WriteDword(HKEY root, const WCHAR* path, const WCHAR* name, DWORD value);

#endif  // BENCH_HAND_WRITTEN_REGISTRY_H_
