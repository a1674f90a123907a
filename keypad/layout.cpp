#include "keypad/layout.h"

#include "frame/registry.h"
#include "frame/result.h"
#include "keypad/keypad_trace.h"
#include "keypad/shift_plane.h"

namespace pal {
namespace {

constexpr DWORD kSupportBytes = 1024;

// The text of a registry value goes behind the first `at` units of a path.
std::span<WCHAR> LayoutText(LayoutPath& path, size_t at) {
  return std::span(path).subspan(at, kMaxLayoutUnits + 1);
}

// The name of an event or of its value, for a line that takes 8-bit text. Empty where it has 32
// characters and more, which none has.
std::array<char, 32> NarrowName(const WCHAR* name) {
  std::array<char, 32> narrow{};
  static_cast<void>(Narrow(narrow, name));
  return narrow;
}

bool ReadActiveLayout(LayoutPath& layout) {
  UniqueRegistryKey key;
  return OpenKeypadKey(kKeyboardPath, key) == ERROR_SUCCESS &&
         ReadKeypadText(key.get(), kActiveLayoutValue, LayoutText(layout, 0)) == ERROR_SUCCESS &&
         layout.front() != WCHAR{};
}

}  // namespace

LayoutPath BelowLayout(const LayoutPath& layout, WideText subkey) {
  const WideText base(layout.data(), Length<WCHAR>(layout));
  LayoutPath path;
  static_cast<void>(Copy(path, base));  // there is room for both
  static_cast<void>(Copy(std::span(path).subspan(base.size()), subkey));
  return path;
}

LONG OpenKeypadKey(const WCHAR* path, UniqueRegistryKey& key) {
  return OpenRegistryKey(HKEY_LOCAL_MACHINE, path, KEY_ALL_ACCESS, key);
}

LONG ReadKeypadText(HKEY key, const WCHAR* name, std::span<WCHAR> text) {
  auto bytes = static_cast<DWORD>((text.size() - 1) * sizeof(WCHAR));
  const LONG error =
      RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(text.data()), &bytes);
  if (error == ERROR_SUCCESS) text[bytes / sizeof(WCHAR)] = WCHAR{};  // an odd byte is no unit
  return error;
}

LONG WriteEventName(HKEY key, const WCHAR* value_name, const WCHAR* event_name) {
  const WideText text(event_name);
  return RegSetValueExW(key, value_name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.data()),
                        static_cast<DWORD>(text.size() * sizeof(WCHAR)));
}

HRESULT ResolveButtonKeyPath(LayoutPath& path, const ButtonRecord& button) {
  path = {};
  const WideText key_path(button.key_path);
  static_cast<void>(Copy(path, key_path));
  if (button.value_name == nullptr) return S_OK;
  size_t at = 0;
  if ((button.flags & ButtonRecord::kLayoutBelowKey) != 0) {
    static_cast<void>(Append(path, TEXT("\\")));
    at = key_path.size() + 1;
  }
  UniqueRegistryKey key;
  if (OpenKeypadKey(button.key_path, key) != ERROR_SUCCESS) {
    kKeypadTrace.Info("Failed to open %ls\r\n", button.key_path);
    return E_FAIL;
  }
  if (ReadKeypadText(key.get(), button.value_name, LayoutText(path, at)) != ERROR_SUCCESS) {
    kKeypadTrace.Info("Failed to read indirect base from %ls : %ls\r\n", button.key_path,
                      button.value_name);
    return E_FAIL;
  }
  return S_OK;
}

HRESULT CreateEventForEventKey(const WCHAR* path, const WCHAR* value_name,
                               const WCHAR* event_name) {
  constexpr const char* kName = "CreateEventForEventKey";
  kKeypadTrace.Info("%s Enter EventName=%ls EventValue=%ls\r\n", kName, event_name, value_name);
  kKeypadTrace.Info("%s Reg Path=%ls\r\n", kName, path);
  UniqueRegistryKey key;
  LONG error = OpenKeypadKey(path, key);
  if (error == ERROR_SUCCESS) error = WriteEventName(key.get(), value_name, event_name);
  const HRESULT result = error == ERROR_SUCCESS ? S_OK : E_FAIL;
  kKeypadTrace.Info("%s(%s,%s) Complete hr=%x\r\n", kName, NarrowName(event_name).data(),
                    NarrowName(value_name).data(), result);
  return result;
}

bool ButtonIsSupported(LONG button) {
  const ButtonRecord* const record = FindButton(button);
  if (record == nullptr) {
    kKeypadTrace.Info("ButtonIsSupported(%d) invalid\r\n", button);
    return false;
  }
  LayoutPath layout;
  if (!ReadActiveLayout(layout)) return false;
  const WCHAR* const plane_name = kShiftPlanes.front();
  kKeypadTrace.Info("ButtonIsSupported(%d) - Read \\%ls: %ls\r\n", button, plane_name,
                    layout.data());
  BYTE plane[kSupportBytes];
  const PlaneReading reading = ReadShiftPlane(layout.data(), plane_name, plane);
  if (Failed(reading.opened)) return false;
  const bool found = AnyKeyRecord(std::span(plane).first(reading.bytes),
                                  [record](DWORD, std::span<BYTE> key_record) {
                                    return IsRecordOf(key_record, kMapsScanCode, record->scan_code);
                                  });
  if (found) {
    kKeypadTrace.Info("ButtonIsSupported(%d) key:0x%x found\r\n", button, record->scan_code);
  } else {
    kKeypadTrace.Info("ButtonIsSupported(%d) key:0x%x not found\r\n", button, record->scan_code);
  }
  return found;
}

}  // namespace pal
