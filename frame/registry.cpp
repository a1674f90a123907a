#include "frame/registry.h"

#include <iterator>

#include "frame/registry_root.h"
#include "frame/result.h"
#include "frame/text.h"

namespace pal {
namespace {

constexpr size_t kMaxStringUnits = 260;

// Opens a key, does `operation` on it and closes it. The error of the open or of the operation.
template <typename Operation>
LONG WithKey(HKEY root, const WCHAR* path, REGSAM access, Operation operation) {
  UniqueRegistryKey key;
  const LONG error = OpenRegistryKey(root, path, access, key);
  return error == ERROR_SUCCESS ? operation(key) : error;
}

}  // namespace

HKEY PALRegRootFromName(const char* name) {
  const HKEY roots[] = {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER, HKEY_CLASSES_ROOT, HKEY_USERS};
  static_assert(std::size(roots) == kRegistryRootNames.size());
  if (name == nullptr) return HKEY_LOCAL_MACHINE;
  const size_t root = FindRegistryRoot(name);
  return root < std::size(roots) ? roots[root] : HKEY_LOCAL_MACHINE;
}

LONG ReadBytes(const UniqueRegistryKey& key, const WCHAR* name, std::span<BYTE> bytes,
               StoredValue& stored) {
  stored = {REG_NONE, static_cast<DWORD>(bytes.size())};
  return RegQueryValueExW(key.get(), name, nullptr, &stored.type, bytes.data(), &stored.bytes);
}

LONG ReadNumber(const UniqueRegistryKey& key, const WCHAR* name, DWORD& number,
                StoredValue* stored) {
  DWORD read = 0;
  StoredValue value;
  const LONG error = ReadBytes(key, name, {reinterpret_cast<BYTE*>(&read), sizeof(read)}, value);
  if (error == ERROR_SUCCESS) number = read;
  if (stored != nullptr) *stored = value;
  return error;
}

LONG ReadText(const UniqueRegistryKey& key, const WCHAR* name, std::span<WCHAR> text,
              StoredValue* stored) {
  StoredValue value;
  const size_t room = (text.size() - 1) * sizeof(WCHAR);
  const LONG error = ReadBytes(key, name, {reinterpret_cast<BYTE*>(text.data()), room}, value);
  if (error == ERROR_SUCCESS) text[value.bytes / sizeof(WCHAR)] = WCHAR{};
  if (stored != nullptr) *stored = value;
  return error;
}

LONG WriteBytes(const UniqueRegistryKey& key, const WCHAR* name, std::span<const BYTE> bytes,
                DWORD type) {
  return RegSetValueExW(key.get(), name, 0, type, bytes.data(), static_cast<DWORD>(bytes.size()));
}

LONG WriteNumber(const UniqueRegistryKey& key, const WCHAR* name, DWORD number) {
  const auto* const bytes = reinterpret_cast<const BYTE*>(&number);
  return WriteBytes(key, name, {bytes, sizeof(number)}, REG_DWORD);
}

LONG WriteText(const UniqueRegistryKey& key, const WCHAR* name, WideText text) {
  const auto* const bytes = reinterpret_cast<const BYTE*>(text.data());
  return WriteBytes(key, name, {bytes, text.size() * sizeof(WCHAR)}, REG_SZ);
}

HRESULT PALRegSetString(HKEY root, const WCHAR* path, const WCHAR* name,
                        std::span<const WCHAR> text) {
  if (path == nullptr || name == nullptr || text.data() == nullptr) return E_FAIL;
  const size_t units = Length(text) + 2;  // the terminator and what stands behind it
  if (units > text.size()) return E_FAIL;
  return HResultFromWin32(WithKey(root, path, KEY_SET_VALUE, [&](const UniqueRegistryKey& key) {
    return WriteText(key, name, {text.data(), units});
  }));
}

HRESULT PALRegGetStringValue(HKEY root, const WCHAR* path, const WCHAR* name, WCHAR* buffer,
                             DWORD* bytes) {
  if (path == nullptr || name == nullptr || buffer == nullptr || bytes == nullptr) return E_FAIL;
  return HResultFromWin32(WithKey(root, path, KEY_QUERY_VALUE, [&](const UniqueRegistryKey& key) {
    StoredValue stored;
    const LONG error = ReadBytes(key, name, {reinterpret_cast<BYTE*>(buffer), *bytes}, stored);
    if (error == ERROR_SUCCESS) *bytes = stored.bytes;
    return error;
  }));
}

HRESULT PALRegSetDword(HKEY root, const WCHAR* path, const WCHAR* name, DWORD value) {
  if (path == nullptr || name == nullptr) return E_FAIL;
  return HResultFromWin32(WithKey(root, path, KEY_SET_VALUE, [&](const UniqueRegistryKey& key) {
    return WriteNumber(key, name, value);
  }));
}

HRESULT PALRegCreateSetDword(HKEY root, const WCHAR* path, const WCHAR* name, DWORD value) {
  if (path == nullptr || name == nullptr) return E_FAIL;
  UniqueRegistryKey key;
  LONG error = CreateRegistryKey(root, path, KEY_SET_VALUE, key);
  if (error == ERROR_SUCCESS) error = WriteNumber(key, name, value);
  return HResultFromWin32(error);
}

HRESULT PALRegGetDword(HKEY root, const WCHAR* path, const WCHAR* name, DWORD* value) {
  if (path == nullptr || name == nullptr || value == nullptr) return E_FAIL;
  return HResultFromWin32(WithKey(root, path, KEY_QUERY_VALUE, [&](const UniqueRegistryKey& key) {
    return ReadNumber(key, name, *value);
  }));
}

HRESULT PALRegSetBinary(HKEY root, const WCHAR* path, const WCHAR* name, const BYTE* data,
                        DWORD bytes) {
  if (path == nullptr || name == nullptr || data == nullptr) return E_FAIL;
  return HResultFromWin32(WithKey(root, path, KEY_SET_VALUE, [&](const UniqueRegistryKey& key) {
    static_cast<void>(WriteBytes(key, name, {data, bytes}));
    return ERROR_SUCCESS;
  }));
}

HRESULT PALRegGetBinary(HKEY root, const WCHAR* path, const WCHAR* name, BYTE* buffer,
                        DWORD* bytes) {
  if (path == nullptr || name == nullptr || buffer == nullptr || bytes == nullptr) return E_FAIL;
  return HResultFromWin32(WithKey(root, path, KEY_QUERY_VALUE, [&](const UniqueRegistryKey& key) {
    StoredValue stored;
    const LONG error = ReadBytes(key, name, {buffer, *bytes}, stored);
    if (error == ERROR_SUCCESS) *bytes = stored.bytes;
    return ERROR_SUCCESS;
  }));
}

HRESULT PALRegGetString(HKEY root, const WCHAR* path, const WCHAR* name, std::span<WCHAR> text,
                        DWORD* bytes) {
  if (path == nullptr || name == nullptr || text.data() == nullptr || bytes == nullptr) {
    return E_FAIL;
  }
  WCHAR read[kMaxStringUnits + 1] = {};
  StoredValue stored;
  const LONG error = WithKey(root, path, KEY_QUERY_VALUE, [&](const UniqueRegistryKey& key) {
    return ReadText(key, name, read, &stored);
  });
  if (error != ERROR_SUCCESS) return HResultFromWin32(error);
  if (!Copy(text, WideText(read))) return HResultFromWin32(ERROR_MORE_DATA);
  *bytes = stored.bytes;
  return S_OK;
}

}  // namespace pal
