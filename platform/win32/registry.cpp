// The device's registry in Windows' own. Its four roots stand below one key of this user, so that a
// program on a PC reads and changes nothing of the PC's settings.
#include <windows.h>

#include <array>
#include <exception>
#include <filesystem>
#include <vector>

#include "platform/sim/host_file.h"
#include "platform/sim/kernel/registry_text.h"
#include "platform/sim/text.h"
#include "platform/win32/host_folder.h"

namespace win32 {
namespace {

constexpr const wchar_t* kPath = L"Software\\DVLORQPAL";
constexpr const wchar_t* kIsFilled = L"IsFilled";  // the value that a whole registry has
constexpr std::array<const wchar_t*, 4> kRootNames{L"HKEY_CLASSES_ROOT", L"HKEY_CURRENT_USER",
                                                   L"HKEY_LOCAL_MACHINE", L"HKEY_USERS"};
constexpr ULONG_PTR kFirstRoot = 0x80000000;

HKEY Create(HKEY parent, const wchar_t* name) {
  HKEY key = nullptr;
  RegCreateKeyExW(parent, name, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
  return key;
}

const wchar_t* Wide(const std::u16string& text) {
  return reinterpret_cast<const wchar_t*>(text.c_str());
}

// False where something could not be written: the journal says what.
bool Fill(HKEY key, const sim::RegistryKey& from) {
  bool is_whole = key != nullptr;
  for (const sim::RegistryValue& value : from.values()) {
    is_whole = RegSetValueExW(key, Wide(value.name), 0, value.type, value.data.data(),
                              static_cast<DWORD>(value.data.size())) == ERROR_SUCCESS &&
               is_whole;
  }
  if (!is_whole) {
    AppendLine(L"journal.txt", "registry.reg: not whole at " + sim::ToUtf8(from.Path()));
  }
  for (const auto& subkey : from.keys()) {
    const HKEY below = Create(key, Wide(subkey->name()));
    is_whole = Fill(below, *subkey) && is_whole;
    RegCloseKey(below);
  }
  return is_whole;
}

// The first program on a PC fills the registry from the device's registry.reg. False where that
// cannot be read or written as a whole: the next program tries it again.
bool FillFromFile(const std::array<HKEY, 4>& roots) {
  sim::Registry registry;
  try {
    const std::string text = sim::ReadHostFile(BesideLibrary(L"device\\registry.reg"));
    for (const std::string& fault : sim::ImportRegistryText(registry, text)) {
      AppendLine(L"journal.txt", "registry.reg:" + fault);
    }
  } catch (const std::exception& error) {
    AppendLine(L"journal.txt", error.what());
    return false;
  }
  bool is_whole = true;
  for (unsigned index = 0; index < roots.size(); ++index) {
    is_whole = Fill(roots[index], *registry.root(index)) && is_whole;
  }
  return is_whole;
}

class Roots {
 public:
  Roots() {
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, L"DVLORQPAL_FILLS_REGISTRY");
    WaitForSingleObject(mutex, INFINITE);
    const HKEY above = Create(HKEY_CURRENT_USER, kPath);
    for (std::size_t index = 0; index < keys_.size(); ++index) {
      keys_[index] = Create(above, kRootNames[index]);
    }
    const bool is_filled =
        RegQueryValueExW(above, kIsFilled, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
    if (!is_filled && FillFromFile(keys_)) {
      RegSetValueExW(above, kIsFilled, 0, REG_SZ, reinterpret_cast<const BYTE*>(L""), 2);
    }
    RegCloseKey(above);
    ReleaseMutex(mutex);
    CloseHandle(mutex);
  }
  ~Roots() {
    for (const HKEY key : keys_) RegCloseKey(key);
  }
  Roots(const Roots&) = delete;
  Roots& operator=(const Roots&) = delete;

  [[nodiscard]] HKEY at(ULONG_PTR index) const { return keys_.at(index); }

 private:
  std::array<HKEY, 4> keys_{};
};

bool IsRoot(HKEY key) {
  return reinterpret_cast<ULONG_PTR>(key) - kFirstRoot < kRootNames.size();
}

// Where a key of the device stands.
HKEY KeyOf(HKEY key) {
  if (!IsRoot(key)) return key;
  static const Roots roots;
  return roots.at(reinterpret_cast<ULONG_PTR>(key) - kFirstRoot);
}

// The device's calls leave their error as the last error, too.
LONG Answer(LONG error) {
  if (error != ERROR_SUCCESS) SetLastError(static_cast<DWORD>(error));
  return error;
}

}  // namespace
}  // namespace win32

using win32::Answer;
using win32::KeyOf;

extern "C" {

LONG Win32RegOpenKeyExW(HKEY key, LPCWSTR path, DWORD options, REGSAM access, PHKEY result) {
  return Answer(RegOpenKeyExW(KeyOf(key), path, options, access, result));
}

LONG Win32RegCreateKeyExW(HKEY key, LPCWSTR path, DWORD reserved, LPWSTR key_class, DWORD options,
                          REGSAM access, LPSECURITY_ATTRIBUTES security, PHKEY result,
                          LPDWORD disposition) {
  return Answer(RegCreateKeyExW(KeyOf(key), path, reserved, key_class, options, access, security,
                                result, disposition));
}

LONG Win32RegCloseKey(HKEY key) {
  return win32::IsRoot(key) ? ERROR_SUCCESS : RegCloseKey(key);
}

LONG Win32RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
                           LPDWORD bytes) {
  return Answer(RegQueryValueExW(KeyOf(key), name, reserved, type, data, bytes));
}

// Windows looks behind a text that is set without a terminator, and stores one that it finds there.
// The device stores what it is given: so Windows finds none.
LONG Win32RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                         DWORD bytes) {
  if (data == nullptr) {
    return Answer(bytes == 0 ? RegSetValueExW(KeyOf(key), name, reserved, type, nullptr, 0)
                             : ERROR_INVALID_PARAMETER);
  }
  std::vector<BYTE> copy(data, data + bytes);
  copy.insert(copy.end(), {0xFF, 0xFF, 0xFF, 0xFF});
  return Answer(RegSetValueExW(KeyOf(key), name, reserved, type, copy.data(), bytes));
}

LONG Win32RegDeleteValueW(HKEY key, LPCWSTR name) {
  return Answer(RegDeleteValueW(KeyOf(key), name));
}

// With all keys below it.
LONG Win32RegDeleteKeyW(HKEY key, LPCWSTR path) {
  if (path == nullptr || *path == L'\0') return Answer(ERROR_INVALID_PARAMETER);
  return Answer(RegDeleteTreeW(KeyOf(key), path));
}

LONG Win32RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, LPDWORD units, LPDWORD reserved,
                        LPWSTR key_class, LPDWORD class_units, PFILETIME last_write) {
  return Answer(
      RegEnumKeyExW(KeyOf(key), index, name, units, reserved, key_class, class_units, last_write));
}

LONG Win32RegEnumValueW(HKEY key, DWORD index, LPWSTR name, LPDWORD units, LPDWORD reserved,
                        LPDWORD type, LPBYTE data, LPDWORD bytes) {
  return Answer(RegEnumValueW(KeyOf(key), index, name, units, reserved, type, data, bytes));
}

LONG Win32RegFlushKey(HKEY key) {
  return Answer(RegFlushKey(KeyOf(key)));
}

}  // extern "C"
