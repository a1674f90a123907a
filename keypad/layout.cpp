#include "keypad/layout.h"

#include "frame/registry.h"
#include "frame/result.h"
#include "frame/trace.h"
#include "keypad/shift_plane.h"

namespace pal {
namespace {

constexpr DWORD kSupportBytes = 1024;

// A name for a line that takes 8-bit text. Each is shorter than 32 characters.
std::array<char, 32> NarrowName(const WCHAR* name) {
  std::array<char, 32> narrow{};
  static_cast<void>(Narrow(narrow, name));
  return narrow;
}

bool ReadActiveLayout(LayoutPath& layout) {
  UniqueRegistryKey key;
  const LONG error = OpenRegistryKey(HKEY_LOCAL_MACHINE, kKeyboardPath, KEY_QUERY_VALUE, key);
  return error == ERROR_SUCCESS &&
         ReadLayoutPath(key, kActiveLayoutValue, layout) == ERROR_SUCCESS &&
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

LONG ReadLayoutPath(const UniqueRegistryKey& key, const WCHAR* name, LayoutPath& layout) {
  return ReadText(key, name, std::span(layout).first(kMaxLayoutUnits + 1));
}

HRESULT ResolveButtonKeyPath(LayoutPath& path, const ButtonRecord& button) {
  path = {};
  static_cast<void>(Copy(path, button.key_path));
  if (button.value_name == nullptr) return S_OK;
  UniqueRegistryKey key;
  if (OpenKeypadKey(button.key_path, key) != ERROR_SUCCESS) {
    kKeypadTrace.Info("Failed to open %ls\r\n", button.key_path);
    return E_FAIL;
  }
  LayoutPath layout;
  if (ReadLayoutPath(key, button.value_name, layout) != ERROR_SUCCESS) {
    kKeypadTrace.Info("Failed to read indirect base from %ls : %ls\r\n", button.key_path,
                      button.value_name);
    return E_FAIL;
  }
  path = layout;
  return S_OK;
}

HRESULT CreateEventForEventKey(const WCHAR* path, const WCHAR* value_name,
                               const WCHAR* event_name) {
  kKeypadTrace.Info("CreateEventForEventKey Enter EventName=%ls EventValue=%ls\r\n", event_name,
                    value_name);
  kKeypadTrace.Info("CreateEventForEventKey Reg Path=%ls\r\n", path);
  UniqueRegistryKey key;
  LONG error = OpenKeypadKey(path, key);
  if (error == ERROR_SUCCESS) error = WriteText(key, value_name, event_name);
  const HRESULT result = error == ERROR_SUCCESS ? S_OK : E_FAIL;
  kKeypadTrace.Info("CreateEventForEventKey(%s,%s) Complete hr=%x\r\n",
                    NarrowName(event_name).data(), NarrowName(value_name).data(), result);
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
