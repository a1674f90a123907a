// Reading and writing of registry values: on a key that is open, and by a key's path.
#ifndef FRAME_REGISTRY_H_
#define FRAME_REGISTRY_H_

#include <span>

#include "frame/text.h"
#include "frame/unique_handle.h"
#include "platform/wince.h"

namespace pal {

// The root key whose name `name` begins with (in upper case, as in "HKEY_USERS\X").
// HKEY_LOCAL_MACHINE for any other name, and for null.
[[nodiscard]] HKEY PALRegRootFromName(const char* name);

// A key's path as the platform's calls take it: without a backslash at its beginning. Some paths of
// the library have one in their trace lines, and so may those that come from files and values.
[[nodiscard]] inline const WCHAR* WithoutLeadingBackslash(const WCHAR* path) {
  while (*path == TEXT('\\')) ++path;
  return path;
}

// The functions that take a key, or give one, return the system error of the call: ERROR_SUCCESS
// where it is done. None of them traces.

// `key` holds the key on ERROR_SUCCESS and nothing otherwise. The platform ignores the access; ask
// for what the key is used for all the same, because desktop Windows does not.
[[nodiscard]] inline LONG OpenRegistryKey(HKEY root, const WCHAR* path, REGSAM access,
                                          UniqueRegistryKey& key) {
  HKEY opened = nullptr;
  const LONG error = RegOpenKeyExW(root, WithoutLeadingBackslash(path), 0, access, &opened);
  key.Reset(error == ERROR_SUCCESS ? opened : nullptr);
  return error;
}

// Creates the key where it does not exist.
[[nodiscard]] inline LONG CreateRegistryKey(HKEY root, const WCHAR* path, REGSAM access,
                                            UniqueRegistryKey& key) {
  HKEY created = nullptr;
  DWORD disposition = 0;
  const LONG error = RegCreateKeyExW(root, WithoutLeadingBackslash(path), 0, nullptr, 0, access,
                                     nullptr, &created, &disposition);
  key.Reset(error == ERROR_SUCCESS ? created : nullptr);
  return error;
}

// The type and the size of a value in the registry.
struct StoredValue {
  DWORD type = REG_NONE;
  DWORD bytes = 0;
};

// Readers do not check the type; a caller that wants only one type asks for `stored`. It is written
// also on ERROR_MORE_DATA, where the value is larger than the buffer.

// Reads a number of at most four bytes; bytes that it does not have are 0. On an error `number` is
// as it was.
[[nodiscard]] LONG ReadNumber(const UniqueRegistryKey& key, const WCHAR* name, DWORD& number,
                              StoredValue* stored = nullptr);

// Reads a text of at most text.size() - 1 units and terminates it, whether or not it is stored with
// a terminator. An odd byte at its end is dropped. On an error `text` holds whatever the platform
// left in it.
[[nodiscard]] LONG ReadText(const UniqueRegistryKey& key, const WCHAR* name, std::span<WCHAR> text,
                            StoredValue* stored = nullptr);

// Reads a value as it is stored. An empty `bytes` asks for the type and the size only.
[[nodiscard]] LONG ReadBytes(const UniqueRegistryKey& key, const WCHAR* name, std::span<BYTE> bytes,
                             StoredValue& stored);

// Writes REG_DWORD.
[[nodiscard]] LONG WriteNumber(const UniqueRegistryKey& key, const WCHAR* name, DWORD number);

// Writes REG_SZ: the units of `text` and nothing behind them. For a terminator, count it in.
[[nodiscard]] LONG WriteText(const UniqueRegistryKey& key, const WCHAR* name, WideText text);

[[nodiscard]] LONG WriteBytes(const UniqueRegistryKey& key, const WCHAR* name,
                              std::span<const BYTE> bytes, DWORD type = REG_BINARY);

// The functions from here on open a key by its path, do one operation and close the key. Their
// results, where one says nothing else:
//
// S_OK                done
// E_FAIL              a null path, name, buffer or out-pointer; nothing was opened or changed
// PAL_E_WIN32(error)  the error of the open, the read or the write: PAL_E_FILE_NOT_FOUND where the
//                     key or the value does not exist, PAL_E_MORE_DATA where the value is larger
//                     than the buffer
//
// The setters but PALRegCreateSetDword need a key that exists. Out-parameters are written on
// success only. No getter checks the type of the value. Nothing is traced.

// Writes REG_SZ. `text` is the whole buffer that holds the text: the text up to its first null is
// stored with that null and the one unit behind it. E_FAIL where the buffer does not hold that
// unit.
[[nodiscard]] HRESULT PALRegSetString(HKEY root, const WCHAR* path, const WCHAR* name,
                                      std::span<const WCHAR> text);

// `bytes`: in, the size of `buffer` in bytes; out, the size of the value. A value that was stored
// without a null is not terminated here either.
[[nodiscard]] HRESULT PALRegGetStringValue(HKEY root, const WCHAR* path, const WCHAR* name,
                                           WCHAR* buffer, DWORD* bytes);

// Writes REG_DWORD.
[[nodiscard]] HRESULT PALRegSetDword(HKEY root, const WCHAR* path, const WCHAR* name, DWORD value);

// As PALRegSetDword, and creates the key where it does not exist.
[[nodiscard]] HRESULT PALRegCreateSetDword(HKEY root, const WCHAR* path, const WCHAR* name,
                                           DWORD value);

// Reads a value of at most four bytes; bytes that it does not have are 0.
[[nodiscard]] HRESULT PALRegGetDword(HKEY root, const WCHAR* path, const WCHAR* name, DWORD* value);

// Writes REG_BINARY. S_OK once the key is open, also where the write then fails.
[[nodiscard]] HRESULT PALRegSetBinary(HKEY root, const WCHAR* path, const WCHAR* name,
                                      const BYTE* data, DWORD bytes);

// `bytes`: in, the size of `buffer`; out, the size of the value. S_OK once the key is open: where
// the value cannot be read, buffer and size keep what the caller put there as its default.
[[nodiscard]] HRESULT PALRegGetBinary(HKEY root, const WCHAR* path, const WCHAR* name, BYTE* buffer,
                                      DWORD* bytes);

// Reads a text of at most 520 bytes up to its first null. `bytes` receives the size of the stored
// value. PAL_E_MORE_DATA also where the text and its terminator do not fit `text`.
[[nodiscard]] HRESULT PALRegGetString(HKEY root, const WCHAR* path, const WCHAR* name,
                                      std::span<WCHAR> text, DWORD* bytes);

}  // namespace pal

#endif  // FRAME_REGISTRY_H_
