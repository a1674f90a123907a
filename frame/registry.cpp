#include "frame/registry.h"

#include <iterator>

#include "frame/registry_root.h"
#include "frame/result.h"
#include "frame/text.h"

namespace pal {
namespace {

constexpr DWORD kMaxStringBytes = 520;

// Behind a success nobody asks for the last error, so that it need not be kept over the close.
inline void CloseAfterSuccess(UniqueRegistryKey& key) {
  RegCloseKey(key.Release());
}

// The error of the open or of the write.
inline LONG SetValue(HKEY root, const WCHAR* path, const WCHAR* name, DWORD type, const void* data,
                     DWORD bytes) {
  UniqueRegistryKey key;
  LONG error = OpenRegistryKey(root, path, KEY_SET_VALUE, key);
  if (error != ERROR_SUCCESS) return error;
  error = RegSetValueExW(key.get(), name, 0, type, static_cast<const BYTE*>(data), bytes);
  if (error == ERROR_SUCCESS) CloseAfterSuccess(key);
  return error;
}

inline LONG Query(const UniqueRegistryKey& key, const WCHAR* name, void* buffer, DWORD& bytes) {
  return RegQueryValueExW(key.get(), name, nullptr, nullptr, static_cast<BYTE*>(buffer), &bytes);
}

// The error of the open or of the query. `bytes` is the buffer's size, then the value's.
inline LONG GetValue(HKEY root, const WCHAR* path, const WCHAR* name, void* buffer, DWORD& bytes) {
  UniqueRegistryKey key;
  LONG error = OpenRegistryKey(root, path, KEY_QUERY_VALUE, key);
  if (error != ERROR_SUCCESS) return error;
  error = Query(key, name, buffer, bytes);
  if (error == ERROR_SUCCESS) CloseAfterSuccess(key);
  return error;
}

}  // namespace

HKEY PALRegRootFromName(const char* name) {
  const HKEY roots[] = {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER, HKEY_CLASSES_ROOT, HKEY_USERS};
  static_assert(std::size(roots) == kRegistryRootNames.size());
  if (name == nullptr) return HKEY_LOCAL_MACHINE;
  const size_t root = FindRegistryRoot(name);
  return root < std::size(roots) ? roots[root] : HKEY_LOCAL_MACHINE;
}

HRESULT PALRegSetString(HKEY root, const WCHAR* path, const WCHAR* name,
                        std::span<const WCHAR> text) {
  if (path == nullptr || name == nullptr || text.data() == nullptr) return E_FAIL;
  const size_t units = Length(text) + 2;  // the terminator and what stands behind it
  if (units > text.size()) return E_FAIL;
  const auto bytes = static_cast<DWORD>(units * sizeof(WCHAR));
  return HResultFromWin32(SetValue(root, path, name, REG_SZ, text.data(), bytes));
}

HRESULT PALRegGetStringValue(HKEY root, const WCHAR* path, const WCHAR* name, WCHAR* buffer,
                             DWORD* bytes) {
  if (path == nullptr || name == nullptr || buffer == nullptr || bytes == nullptr) return E_FAIL;
  DWORD value_bytes = *bytes;
  const LONG error = GetValue(root, path, name, buffer, value_bytes);
  if (error == ERROR_SUCCESS) *bytes = value_bytes;
  return HResultFromWin32(error);
}

HRESULT PALRegSetDword(HKEY root, const WCHAR* path, const WCHAR* name, DWORD value) {
  if (path == nullptr || name == nullptr) return E_FAIL;
  return HResultFromWin32(SetValue(root, path, name, REG_DWORD, &value, sizeof(value)));
}

HRESULT PALRegCreateSetDword(HKEY root, const WCHAR* path, const WCHAR* name, DWORD value) {
  if (path == nullptr || name == nullptr) return E_FAIL;
  UniqueRegistryKey key;
  LONG error = CreateRegistryKey(root, path, key);
  if (error == ERROR_SUCCESS) {
    error = RegSetValueExW(key.get(), name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value),
                           sizeof(value));
  }
  return HResultFromWin32(error);
}

HRESULT PALRegGetDword(HKEY root, const WCHAR* path, const WCHAR* name, DWORD* value) {
  if (path == nullptr || name == nullptr || value == nullptr) return E_FAIL;
  DWORD stored = 0;
  DWORD bytes = sizeof(stored);
  const LONG error = GetValue(root, path, name, &stored, bytes);
  if (error == ERROR_SUCCESS) *value = stored;
  return HResultFromWin32(error);
}

HRESULT PALRegSetBinary(HKEY root, const WCHAR* path, const WCHAR* name, const BYTE* data,
                        DWORD bytes) {
  if (path == nullptr || name == nullptr || data == nullptr) return E_FAIL;
  UniqueRegistryKey key;
  const LONG error = OpenRegistryKey(root, path, KEY_SET_VALUE, key);
  if (error == ERROR_SUCCESS) RegSetValueExW(key.get(), name, 0, REG_BINARY, data, bytes);
  return HResultFromWin32(error);
}

HRESULT PALRegGetBinary(HKEY root, const WCHAR* path, const WCHAR* name, BYTE* buffer,
                        DWORD* bytes) {
  if (path == nullptr || name == nullptr || buffer == nullptr || bytes == nullptr) return E_FAIL;
  UniqueRegistryKey key;
  const LONG error = OpenRegistryKey(root, path, KEY_QUERY_VALUE, key);
  DWORD value_bytes = *bytes;
  if (error == ERROR_SUCCESS && Query(key, name, buffer, value_bytes) == ERROR_SUCCESS) {
    *bytes = value_bytes;
  }
  return HResultFromWin32(error);
}

HRESULT PALRegGetString(HKEY root, const WCHAR* path, const WCHAR* name, std::span<WCHAR> text,
                        DWORD* bytes) {
  if (path == nullptr || name == nullptr || text.data() == nullptr || bytes == nullptr) {
    return E_FAIL;
  }
  WCHAR stored[kMaxStringBytes / sizeof(WCHAR)] = {};
  DWORD stored_bytes = sizeof(stored);
  const LONG error = GetValue(root, path, name, stored, stored_bytes);
  if (error != ERROR_SUCCESS) return HResultFromWin32(error);
  const WideText stored_text(stored, Length<WCHAR>(stored));
  if (!Copy(text, stored_text)) return HResultFromWin32(ERROR_MORE_DATA);
  *bytes = stored_bytes;
  return S_OK;
}

}  // namespace pal
