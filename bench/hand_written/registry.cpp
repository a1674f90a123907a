#include "bench/hand_written/registry.h"

HRESULT ReadValue(HKEY root, const WCHAR* path, const WCHAR* name, void* data, DWORD* bytes) {
  HKEY key = nullptr;
  LONG error = RegOpenKeyExW(root, path, 0, KEY_QUERY_VALUE, &key);
  if (error != ERROR_SUCCESS) return ResultOf(error);
  error = RegQueryValueExW(key, name, nullptr, nullptr, static_cast<BYTE*>(data), bytes);
  RegCloseKey(key);
  return ResultOf(error);
}

HRESULT ReadDword(HKEY root, const WCHAR* path, const WCHAR* name, DWORD* value) {
  DWORD stored = 0;
  DWORD bytes = sizeof(stored);
  const HRESULT result = ReadValue(root, path, name, &stored, &bytes);
  if (result >= 0) *value = stored;
  return result;
}

HRESULT WriteValue(HKEY root, const WCHAR* path, const WCHAR* name, DWORD type, const void* data,
                   DWORD bytes) {
  HKEY key = nullptr;
  LONG error = RegOpenKeyExW(root, path, 0, KEY_SET_VALUE, &key);
  if (error != ERROR_SUCCESS) return ResultOf(error);
  error = RegSetValueExW(key, name, 0, type, static_cast<const BYTE*>(data), bytes);
  RegCloseKey(key);
  return ResultOf(error);
}

HRESULT WriteDword(HKEY root, const WCHAR* path, const WCHAR* name, DWORD value) {
  return WriteValue(root, path, name, REG_DWORD, &value, sizeof(value));
}
