#include <fmt/format.h>

#include <cstring>

#include "platform/sim/coredll/call.h"
#include "platform/sim/kernel/registry_text.h"

namespace sim {
namespace {

constexpr std::uintptr_t kFirstRoot = 0x80000000;
constexpr std::uintptr_t kRootCount = 4;
constexpr DWORD kCreatedNewKey = 1;
constexpr DWORD kOpenedExistingKey = 2;

bool IsRoot(HKEY key) {
  return reinterpret_cast<std::uintptr_t>(key) - kFirstRoot < kRootCount;
}

// The key behind a handle. nullptr, with the error set, where there is none or it was deleted. A
// use that was not asked for is recorded as misuse, and done.
std::shared_ptr<RegistryKey> KeyOf(Call& call, HKEY handle, LONG& error, REGSAM use = 0) {
  if (IsRoot(handle)) {
    const auto index = reinterpret_cast<std::uintptr_t>(handle) - kFirstRoot;
    return call.kernel().registry.root(static_cast<unsigned>(index));
  }
  const std::shared_ptr<KeyObject> object = call.Find<KeyObject>(handle);
  error = ERROR_INVALID_HANDLE;
  if (object == nullptr) return nullptr;
  if ((object->access & use) != use) {
    call.Misuse(fmt::format("was given a key that was opened with the access {:#x} alone: {}",
                            object->access, ToUtf8(object->key->Path())));
  }
  error = ERROR_KEY_DELETED;
  return object->key->deleted() ? nullptr : object->key;
}

std::u16string_view OrEmpty(LPCWSTR text) {
  return text == nullptr ? std::u16string_view() : std::u16string_view(text);
}

// The path of a key. A backslash at its beginning is skipped and recorded as misuse.
std::u16string_view PathOf(Call& call, LPCWSTR path) {
  const std::u16string_view text = OrEmpty(path);
  if (text.starts_with(u'\\')) {
    call.Misuse(fmt::format("was given a path that begins with a backslash: {}", ToUtf8(text)));
  }
  return text;
}

// Whether the reserved arguments are empty, as they must be. Otherwise misuse is recorded.
bool IsReservedEmpty(Call& call, bool is_empty) {
  if (!is_empty) call.Misuse("was given a reserved argument");
  return is_empty;
}

// A key's path with the name of a value or the path of another key behind it, for faults.
Call::Subject Below(HKEY key, LPCWSTR name = nullptr) {
  return [key, name](Call& call) {
    LONG error = ERROR_SUCCESS;
    const auto from = KeyOf(call, key, error);
    std::string path = from == nullptr ? std::string() : ToUtf8(from->Path());
    return name == nullptr ? path : path + '\\' + ToUtf8(name);
  };
}

Call::Subject Entry(HKEY key, DWORD index) {
  return [key, index](Call& call) { return fmt::format("{}[{}]", Below(key)(call), index); };
}

std::string NamedValue(std::u16string_view name) {
  return name.empty() ? "@" : fmt::format("\"{}\"", ToUtf8(name));
}

// Copies a name with its terminator. `units`: in, the size of the buffer; out, the name's length.
LONG CopyName(std::u16string_view name, LPWSTR buffer, DWORD& units) {
  if (name.size() >= units) return ERROR_MORE_DATA;
  name.copy(buffer, name.size());
  buffer[name.size()] = 0;
  units = static_cast<DWORD>(name.size());
  return ERROR_SUCCESS;
}

// Gives a value's type and data. `bytes`: in, the size of the buffer; out, the size of the value.
LONG CopyData(const RegistryValue& value, LPDWORD type, LPBYTE data, LPDWORD bytes) {
  const auto size = static_cast<DWORD>(value.data.size());
  if (type != nullptr) *type = value.type;
  if (bytes == nullptr) return ERROR_SUCCESS;
  const DWORD room = std::exchange(*bytes, size);
  if (data == nullptr) return ERROR_SUCCESS;
  if (room < size) return ERROR_MORE_DATA;
  if (size > 0) std::memcpy(data, value.data.data(), size);
  return ERROR_SUCCESS;
}

LONG GiveError(Call& call, LONG error) {
  return error == ERROR_SUCCESS ? ERROR_SUCCESS : call.Fail(error);
}

}  // namespace
}  // namespace sim

using sim::Call;
using sim::CallId;
using sim::Effect;

LONG RegOpenKeyExW(HKEY key, LPCWSTR path, DWORD options, REGSAM access, PHKEY result) {
  Call call(CallId::RegOpenKeyExW, sim::Below(key, path));
  if (call.fault() != 0) return call.Fail(call.fault());
  if (result == nullptr || !sim::IsReservedEmpty(call, options == 0)) {
    return call.Fail(ERROR_INVALID_PARAMETER);
  }
  LONG error = ERROR_SUCCESS;
  const auto from = sim::KeyOf(call, key, error);
  if (from == nullptr) return call.Fail(error);
  auto found = sim::Registry::Find(from, sim::PathOf(call, path));
  if (found == nullptr) return call.Fail(ERROR_FILE_NOT_FOUND);
  *result = call.AddHandle<HKEY>(std::make_shared<sim::KeyObject>(std::move(found), access));
  return ERROR_SUCCESS;
}

LONG RegCreateKeyExW(HKEY key, LPCWSTR path, DWORD reserved, LPWSTR /*key_class*/,
                     DWORD /*options*/, REGSAM access, LPSECURITY_ATTRIBUTES security, PHKEY result,
                     LPDWORD disposition) {
  Call call(CallId::RegCreateKeyExW, sim::Below(key, path));
  if (call.fault() != 0) return call.Fail(call.fault());
  const bool usable = result != nullptr && path != nullptr &&
                      sim::IsReservedEmpty(call, reserved == 0 && security == nullptr);
  if (!usable) return call.Fail(ERROR_INVALID_PARAMETER);
  LONG error = ERROR_SUCCESS;
  const auto from = sim::KeyOf(call, key, error);
  if (from == nullptr) return call.Fail(error);
  auto [created, is_new] = sim::Registry::Create(from, sim::PathOf(call, path));
  if (created == nullptr) return call.Fail(ERROR_INVALID_PARAMETER);
  if (is_new) {
    call.Log(Effect::kRegistry, fmt::format("{} created", sim::ToUtf8(created->Path())));
  }
  if (disposition != nullptr) {
    *disposition = is_new ? sim::kCreatedNewKey : sim::kOpenedExistingKey;
  }
  *result = call.AddHandle<HKEY>(std::make_shared<sim::KeyObject>(std::move(created), access));
  return ERROR_SUCCESS;
}

LONG RegCloseKey(HKEY key) {
  Call call(CallId::RegCloseKey);
  if (!sim::IsRoot(key)) {
    if (call.Find<sim::KeyObject>(key) == nullptr) return ERROR_INVALID_HANDLE;
    call.kernel().handles.Close(reinterpret_cast<std::uintptr_t>(key));
  }
  return sim::GiveError(call, call.fault());
}

LONG RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
                      LPDWORD bytes) {
  Call call(CallId::RegQueryValueExW, sim::Below(key, name));
  if (call.fault() != 0) return call.Fail(call.fault());
  const bool usable =
      (data == nullptr || bytes != nullptr) && sim::IsReservedEmpty(call, reserved == nullptr);
  if (!usable) return call.Fail(ERROR_INVALID_PARAMETER);
  LONG error = ERROR_SUCCESS;
  const auto from = sim::KeyOf(call, key, error, KEY_QUERY_VALUE);
  if (from == nullptr) return call.Fail(error);
  const sim::RegistryValue* value = from->FindValue(sim::OrEmpty(name));
  if (value == nullptr) return call.Fail(ERROR_FILE_NOT_FOUND);
  const DWORD room = data == nullptr ? 0 : *bytes;
  error = sim::CopyData(*value, type, data, bytes);
  if (error == ERROR_SUCCESS && data != nullptr) error = call.Answer({data, room}, error, *bytes);
  return sim::GiveError(call, error);
}

LONG RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                    DWORD bytes) {
  Call call(CallId::RegSetValueExW, sim::Below(key, name));
  if (call.fault() != 0) return call.Fail(call.fault());
  const bool usable = (data != nullptr || bytes == 0) && sim::IsReservedEmpty(call, reserved == 0);
  if (!usable) return call.Fail(ERROR_INVALID_PARAMETER);
  LONG error = ERROR_SUCCESS;
  const auto to = sim::KeyOf(call, key, error, KEY_SET_VALUE);
  if (to == nullptr) return call.Fail(error);
  const std::u16string_view value_name = sim::OrEmpty(name);
  to->SetValue(value_name, type, std::vector<BYTE>(data, data + bytes));
  if (!call.kernel().journal.is_read()) return ERROR_SUCCESS;  // a long line for nobody
  call.Log(Effect::kRegistry,
           fmt::format("{} {}={}", sim::ToUtf8(to->Path()), sim::NamedValue(value_name),
                       sim::ValueText(*to->FindValue(value_name))));
  return ERROR_SUCCESS;
}

LONG RegDeleteValueW(HKEY key, LPCWSTR name) {
  Call call(CallId::RegDeleteValueW, sim::Below(key, name));
  if (call.fault() != 0) return call.Fail(call.fault());
  LONG error = ERROR_SUCCESS;
  const auto from = sim::KeyOf(call, key, error, KEY_SET_VALUE);
  if (from == nullptr) return call.Fail(error);
  if (!from->DeleteValue(sim::OrEmpty(name))) return call.Fail(ERROR_FILE_NOT_FOUND);
  call.Log(Effect::kRegistry, fmt::format("{} {} deleted", sim::ToUtf8(from->Path()),
                                          sim::NamedValue(sim::OrEmpty(name))));
  return ERROR_SUCCESS;
}

LONG RegDeleteKeyW(HKEY key, LPCWSTR path) {
  Call call(CallId::RegDeleteKeyW, sim::Below(key, path));
  if (call.fault() != 0) return call.Fail(call.fault());
  if (path == nullptr) return call.Fail(ERROR_INVALID_PARAMETER);
  LONG error = ERROR_SUCCESS;
  const auto from = sim::KeyOf(call, key, error);
  if (from == nullptr) return call.Fail(error);
  const std::u16string_view below = sim::PathOf(call, path);
  const auto doomed = sim::Registry::Find(from, below);
  const std::string doomed_path = doomed == nullptr ? "" : sim::ToUtf8(doomed->Path());
  switch (sim::Registry::Remove(from, below)) {
    case sim::Registry::Removal::kMissing:
      return call.Fail(ERROR_FILE_NOT_FOUND);
    case sim::Registry::Removal::kOpen:
      return call.Fail(ERROR_ACCESS_DENIED);
    case sim::Registry::Removal::kDone:
      break;
  }
  call.Log(Effect::kRegistry, doomed_path + " deleted");
  return ERROR_SUCCESS;
}

LONG RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, LPDWORD name_units, LPDWORD reserved,
                   LPWSTR /*key_class*/, LPDWORD /*class_units*/, FILETIME* /*last_write*/) {
  Call call(CallId::RegEnumKeyExW, sim::Entry(key, index));
  if (call.fault() != 0) return call.Fail(call.fault());
  const bool usable =
      name != nullptr && name_units != nullptr && sim::IsReservedEmpty(call, reserved == nullptr);
  if (!usable) return call.Fail(ERROR_INVALID_PARAMETER);
  LONG error = ERROR_SUCCESS;
  const auto from = sim::KeyOf(call, key, error, KEY_ENUMERATE_SUB_KEYS);
  if (from == nullptr) return call.Fail(error);
  if (index >= from->keys().size()) return call.Fail(ERROR_NO_MORE_ITEMS);
  return sim::GiveError(call, sim::CopyName(from->keys()[index]->name(), name, *name_units));
}

LONG RegEnumValueW(HKEY key, DWORD index, LPWSTR name, LPDWORD name_units, LPDWORD reserved,
                   LPDWORD type, LPBYTE data, LPDWORD bytes) {
  Call call(CallId::RegEnumValueW, sim::Entry(key, index));
  if (call.fault() != 0) return call.Fail(call.fault());
  const bool usable = name != nullptr && name_units != nullptr &&
                      (data == nullptr || bytes != nullptr) &&
                      sim::IsReservedEmpty(call, reserved == nullptr);
  if (!usable) return call.Fail(ERROR_INVALID_PARAMETER);
  LONG error = ERROR_SUCCESS;
  const auto from = sim::KeyOf(call, key, error, KEY_QUERY_VALUE);
  if (from == nullptr) return call.Fail(error);
  if (index >= from->values().size()) return call.Fail(ERROR_NO_MORE_ITEMS);
  const sim::RegistryValue& value = from->values()[index];
  error = sim::CopyName(value.name, name, *name_units);
  if (error == ERROR_SUCCESS) error = sim::CopyData(value, type, data, bytes);
  return sim::GiveError(call, error);
}

LONG RegFlushKey(HKEY key) {
  Call call(CallId::RegFlushKey, sim::Below(key));
  if (call.fault() != 0) return call.Fail(call.fault());
  LONG error = ERROR_SUCCESS;
  const auto flushed = sim::KeyOf(call, key, error);
  if (flushed == nullptr) return call.Fail(error);
  call.Log(Effect::kRegistry, sim::ToUtf8(flushed->Path()) + " flushed");
  return ERROR_SUCCESS;
}
