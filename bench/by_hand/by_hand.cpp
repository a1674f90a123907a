#include "bench/by_hand/by_hand.h"

constinit HANDLE beep_mutex = nullptr;
constinit HANDLE led_mutex = nullptr;

LONG ReadValue(HKEY root, const WCHAR* path, const WCHAR* name, void* data, DWORD* bytes) {
  HKEY key = nullptr;
  LONG error = RegOpenKeyExW(root, path, 0, KEY_QUERY_VALUE, &key);
  if (error != ERROR_SUCCESS) return error;
  error = RegQueryValueExW(key, name, nullptr, nullptr, static_cast<BYTE*>(data), bytes);
  RegCloseKey(key);
  return error;
}

HRESULT ReadNumber(HKEY root, const WCHAR* path, const WCHAR* name, DWORD* number) {
  DWORD stored = 0;
  DWORD bytes = sizeof(stored);
  const LONG error = ReadValue(root, path, name, &stored, &bytes);
  if (error == ERROR_SUCCESS) *number = stored;
  return ResultOf(error);
}

HRESULT WriteNumber(HKEY root, const WCHAR* path, const WCHAR* name, DWORD number) {
  HKEY key = nullptr;
  LONG error = RegOpenKeyExW(root, path, 0, KEY_SET_VALUE, &key);
  if (error != ERROR_SUCCESS) return ResultOf(error);
  error = RegSetValueExW(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number),
                         sizeof(number));
  RegCloseKey(key);
  return ResultOf(error);
}

extern "C" BOOL WINAPI DllMain(HANDLE /*module*/, DWORD reason, LPVOID /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) {
    beep_mutex = CreateMutexW(nullptr, FALSE, TEXT("DVLORQPAL_BEEP_MUTEX"));
    led_mutex = CreateMutexW(nullptr, FALSE, TEXT("DVLORQPAL_LED_MUTEX"));
  } else if (reason == DLL_PROCESS_DETACH) {
    CloseHandle(beep_mutex);
    CloseHandle(led_mutex);
  }
  return TRUE;
}
