// The keypad. Left out is what no row calls: the repair of a new device's layout, and saving and
// restoring the records of the buttons that are ordinary keys.
#include "bench/hand_written/audio_setting.h"
#include "bench/hand_written/registry.h"
#include "include/palkey.h"

namespace {

constexpr HRESULT kNoSuchControlKey = static_cast<HRESULT>(0x83ED0004);
constexpr HRESULT kActionOutOfRange = static_cast<HRESULT>(0x83ED0005);
constexpr HRESULT kNotSupported = static_cast<HRESULT>(0x83ED0007);

constexpr const WCHAR* kKeyboard = TEXT("Hardware\\Devicemap\\Keybd");
constexpr const WCHAR* kActiveLayout = TEXT("CurrentActiveLayoutKey");

struct Button {
  const char* name;
  DWORD scan_code;
  const WCHAR* event;
  const WCHAR* reader_delta;
  const WCHAR* reader_state;
};

constexpr Button kButtons[] = {
    {"Handle", 0, TEXT("Event1"), TEXT("RFIDDCE_CENTER_DELTA"), TEXT("RFIDDCE_CENTER_STATE")},
    {},
    {"Left Side Bottom", 0x91, TEXT("Event2"), TEXT("RFIDDCE_LEFT_DELTA"),
     TEXT("RFIDDCE_LEFT_STATE")},
    {"Middle", 0x90, TEXT("Event1"), TEXT("RFIDDCE_MIDDLE_DELTA"), TEXT("RFIDDCE_MIDDLE_STATE")},
    {},
    {"Left Side Top", 0x43, TEXT("Event5"), TEXT("RFIDDCE_LEFT_DELTA"), TEXT("RFIDDCE_LEFT_STATE")},
    {"Right Side Top", 0x3F, TEXT("Event6"), TEXT("RFIDDCE_RIGHT_DELTA"),
     TEXT("RFIDDCE_RIGHT_STATE")},
    {"Right Side Bottom", 0x40, TEXT("Event7"), TEXT("RFIDDCE_RIGHT_DELTA"),
     TEXT("RFIDDCE_RIGHT_STATE")},
};

// By action; the third is the button's own.
constexpr const WCHAR* kDeltas[] = {
    TEXT("DeltaLeftScan"),       TEXT("DVL_RFID_TRIGGER_EVENT"), nullptr,
    TEXT("DeltaCameraScan"),     TEXT("DeltaFlashlight"),        TEXT("DeltaWindowsDefault"),
    TEXT("DeltaOEMTriggerEvent")};
constexpr const WCHAR* kStates[] = {
    TEXT("StateLeftScan"),       TEXT("DVL_RFID_TRIGGER_STATE"), nullptr,
    TEXT("StateCameraScan"),     TEXT("StateFlashlight"),        TEXT("StateWindowsDefault"),
    TEXT("StateOEMTriggerEvent")};

constinit bool initialised = false;

LONG OpenKey(const WCHAR* path, HKEY* key) {
  return RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_ALL_ACCESS, key);
}

LONG ReadText(HKEY key, const WCHAR* name, WCHAR* text, DWORD units) {
  DWORD bytes = units * static_cast<DWORD>(sizeof(WCHAR));
  const LONG error =
      RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(text), &bytes);
  text[error == ERROR_SUCCESS ? bytes / sizeof(WCHAR) : 0] = 0;
  return error;
}

// Has room for what stands below a layout.
struct Path {
  WCHAR text[320];
};

LONG ReadLayout(Path* layout) {
  HKEY key = nullptr;
  LONG error = OpenKey(kKeyboard, &key);
  if (error != ERROR_SUCCESS) return error;
  error = ReadText(key, kActiveLayout, layout->text, 260);
  RegCloseKey(key);
  return error;
}

bool ResolveLayout(LONG button, Path* layout) {
  if (button != 0) return ReadLayout(layout) == ERROR_SUCCESS;
  constexpr WCHAR kHandle[] = TEXT("Software\\Dravonel\\RFIDServer\\Keybd");
  memcpy(layout->text, kHandle, sizeof(kHandle));
  return true;
}

bool Same(const WCHAR* left, const WCHAR* right) {
  while (*left == *right && *left != 0) {
    ++left;
    ++right;
  }
  return *left == *right;
}

LONG OpenBelow(const Path& layout, const WCHAR* subkey, HKEY* key) {
  Path path;
  const size_t length = wcslen(layout.text);
  memcpy(path.text, layout.text, length * sizeof(WCHAR));
  memcpy(path.text + length, subkey, (wcslen(subkey) + 1) * sizeof(WCHAR));
  return OpenKey(path.text, key);
}

bool HasRecord(const BYTE* plane, DWORD bytes, DWORD scan_code) {
  for (DWORD at = 0; at + 6 <= bytes; at += 6) {
    if (plane[at] == 7 && plane[at + 1] == scan_code) return true;
  }
  return false;
}

bool IsSupported(LONG button) {
  if (button < 0 || button >= PAL_KEY_BUTTON_COUNT || kButtons[button].name == nullptr) {
    return false;
  }
  Path layout;
  if (ReadLayout(&layout) != ERROR_SUCCESS || layout.text[0] == 0) return false;
  BYTE plane[1024];
  DWORD bytes = sizeof(plane);
  return ReadValue(HKEY_LOCAL_MACHINE, layout.text, TEXT("ShiftPlane0"), plane, &bytes) >= 0 &&
         HasRecord(plane, bytes, kButtons[button].scan_code);
}

// 7 where the event is none of an action.
DWORD ReadAction(const Button& button, const Path& layout) {
  HKEY key = nullptr;
  if (OpenBelow(layout, TEXT("\\EVENTS\\DELTA"), &key) != ERROR_SUCCESS) return 7;
  WCHAR name[257];
  LONG error = ReadText(key, button.event, name, 256);
  RegCloseKey(key);
  if (error != ERROR_SUCCESS) return 7;
  const WCHAR* event = Same(name, TEXT("DeltaRightScan")) ? kDeltas[0] : name;
  DWORD action = 0;
  while (action < 7 && !Same(event, action == 2 ? button.reader_delta : kDeltas[action])) ++action;
  if (action == 7) return 7;
  if (OpenBelow(layout, TEXT("\\EVENTS\\STATE"), &key) != ERROR_SUCCESS) return 7;
  error = ReadText(key, button.event, name, 256);
  RegCloseKey(key);
  if (error != ERROR_SUCCESS) return 7;
  event = Same(name, TEXT("StateRightScan")) ? kStates[0] : name;
  return Same(event, action == 2 ? button.reader_state : kStates[action]) ? action : 7;
}

LONG WriteEvent(HKEY key, const Button& button, const WCHAR* event) {
  return RegSetValueExW(key, button.event, 0, REG_SZ, reinterpret_cast<const BYTE*>(event),
                        static_cast<DWORD>(wcslen(event) * sizeof(WCHAR)));
}

HRESULT TellDriver() {
  HANDLE event = CreateEventW(nullptr, FALSE, FALSE, TEXT("DVL_KEYBOARD_CHANGE_USB"));
  if (event == nullptr) return S_OK;
  HKEY driver = nullptr;
  const LONG error =
      RegOpenKeyExW(HKEY_LOCAL_MACHINE, TEXT("Drivers\\HID\\ClientDrivers\\DVLKeyboard"), 0,
                    KEY_QUERY_VALUE, &driver);
  if (error == ERROR_SUCCESS) {
    RegFlushKey(driver);
    RegCloseKey(driver);
    SetEvent(event);
  }
  CloseHandle(event);
  return error == ERROR_SUCCESS ? S_OK : E_FAIL;
}

HRESULT WriteState(const Button& button, const Path& layout, DWORD action) {
  HKEY key = nullptr;
  if (OpenBelow(layout, TEXT("\\EVENTS\\STATE"), &key) != ERROR_SUCCESS) return E_FAIL;
  WCHAR current[257];
  ReadText(key, button.event, current, 256);
  WriteEvent(key, button, action == 2 ? button.reader_state : kStates[action]);
  RegCloseKey(key);
  return S_OK;
}

HRESULT WriteAction(LONG number, DWORD action) {
  const Button& button = kButtons[number];
  Path layout;
  if (!ResolveLayout(number, &layout)) return E_FAIL;
  HKEY delta = nullptr;
  if (OpenBelow(layout, TEXT("\\EVENTS\\DELTA"), &delta) != ERROR_SUCCESS) return E_FAIL;
  DWORD current = 0;
  const HRESULT result = PALKEYGetButtonAction(number, &current);
  const LONG error = WriteEvent(delta, button, action == 2 ? button.reader_delta : kDeltas[action]);
  RegCloseKey(delta);
  if (error != ERROR_SUCCESS || WriteState(button, layout, action) != S_OK) return E_FAIL;
  if (number != 0 && TellDriver() < 0) return E_FAIL;
  return result;
}

LONG OpenShiftKeys(HKEY* key) {
  Path layout;
  const LONG error = ReadLayout(&layout);
  return error != ERROR_SUCCESS ? error : OpenBelow(layout, TEXT("\\ShiftKeys"), key);
}

// The next shift key of the list; ERROR_NO_MORE_ITEMS behind the last.
LONG NextShiftKey(HKEY key, DWORD* index, WCHAR* name, BYTE* data) {
  for (;;) {
    DWORD units = 261;
    DWORD type = REG_NONE;
    DWORD bytes = 4;
    const LONG error = RegEnumValueW(key, (*index)++, name, &units, nullptr, &type, data, &bytes);
    if (error == ERROR_MORE_DATA) continue;
    if (error != ERROR_SUCCESS) return error;
    if (type == REG_BINARY && bytes == 4 && _wcsnicmp(name, TEXT("ShiftKey"), 8) == 0) {
      return error;
    }
  }
}

}  // namespace

HRESULT PALAPI PALKEYInit() {
  initialised = true;
  DWORD done = 0;
  ReadDword(HKEY_LOCAL_MACHINE, TEXT("Software\\Dravonel\\PAL"), TEXT("FixActive"), &done);
  return S_OK;
}

HRESULT PALAPI PALKEYTerm() {
  initialised = false;
  return S_OK;
}

HRESULT PALAPI PALKEYGetNumButtons(DWORD* count) {
  if (count == nullptr) return E_FAIL;
  *count = PAL_KEY_BUTTON_COUNT;
  return S_OK;
}

HRESULT PALAPI PALKEYGetButtonName(LONG button, char* name, DWORD* length) {
  if (name == nullptr || length == nullptr) return E_FAIL;
  if (!IsSupported(button)) return kNotSupported;
  const size_t units = strlen(kButtons[button].name);
  memcpy(name, kButtons[button].name, units + 1);
  *length = static_cast<DWORD>(units);
  return S_OK;
}

HRESULT PALAPI PALKEYGetButtonAction(LONG button, DWORD* action) {
  if (action == nullptr) return E_FAIL;
  *action = PAL_KEY_ACTION_UNKNOWN;
  if (!IsSupported(button)) return kNotSupported;
  Path layout;
  if (!ResolveLayout(button, &layout)) return E_FAIL;
  const DWORD found = ReadAction(kButtons[button], layout);
  if (found < 7) *action = found + 1;
  return S_OK;
}

HRESULT PALAPI PALKEYSetButtonAction(LONG button, LONG action) {
  if (!IsSupported(button)) return kNotSupported;
  if (action < PAL_KEY_ACTION_SCAN || action > PAL_KEY_ACTION_OEM_TRIGGER) {
    return kActionOutOfRange;
  }
  return WriteAction(button, static_cast<DWORD>(action) - 1);
}

HRESULT PALAPI PALKEYControlKeyState(LONG key, DWORD state) {
  static const WCHAR* const names[] = {TEXT("VolumeKeyEnable"), TEXT("ContrastKeyEnable"),
                                       TEXT("BacklightKeyEnable"), TEXT("AltTabEnable")};
  if (key < 0 || key > PAL_CONTROL_KEY_ALT_TAB) return kNoSuchControlKey;
  const DWORD value = state != 0 ? 1 : 0;
  const HRESULT result =
      WriteDword(HKEY_LOCAL_MACHINE, TEXT("Hardware\\DeviceMap\\Keybd"), names[key], value);
  if (key != PAL_CONTROL_KEY_CONTRAST) return result;
  return WriteDword(HKEY_LOCAL_MACHINE, TEXT("Hardware\\DeviceMap\\Keybd"),
                    TEXT("HighContrastKeyEnable"), value);
}

HRESULT PALAPI PALKEYGetShiftBehavior(DWORD* behavior) {
  if (behavior == nullptr) return E_FAIL;
  HKEY key = nullptr;
  LONG error = OpenShiftKeys(&key);
  if (error != ERROR_SUCCESS) return ResultOf(error);
  *behavior = 0xFFFFFFFF;
  WCHAR name[261];
  BYTE data[4];
  DWORD index = 0;
  DWORD bits = 8;  // of no shift key
  while ((error = NextShiftKey(key, &index, name, data)) == ERROR_SUCCESS) {
    const DWORD own = data[0] & 7U;
    if (bits != 8 && own != bits) {
      bits = 9;
      break;
    }
    bits = own;
  }
  RegCloseKey(key);
  if (error != ERROR_SUCCESS && error != ERROR_NO_MORE_ITEMS) return ResultOf(error);
  if (bits == 9) {
    *behavior = PAL_SHIFT_BEHAVIOR_MIXED;
  } else if (bits == 8 || (bits & 1) != 0) {
    *behavior = PAL_SHIFT_BEHAVIOR_0;
  } else {
    *behavior = (bits & 2) != 0   ? PAL_SHIFT_BEHAVIOR_1
                : (bits & 4) != 0 ? PAL_SHIFT_BEHAVIOR_2
                                  : PAL_SHIFT_BEHAVIOR_MIXED;
  }
  return S_OK;
}

HRESULT PALAPI PALKEYSetShiftBehavior(DWORD behavior) {
  if (behavior > PAL_SHIFT_BEHAVIOR_2) return E_INVALIDARG;
  HKEY key = nullptr;
  LONG error = OpenShiftKeys(&key);
  if (error != ERROR_SUCCESS) return ResultOf(error);
  WCHAR name[261];
  BYTE data[4];
  DWORD index = 0;
  while (NextShiftKey(key, &index, name, data) == ERROR_SUCCESS) {
    data[0] = static_cast<BYTE>((data[0] & ~7U) | (1U << behavior));
    error = RegSetValueExW(key, name, 0, REG_BINARY, data, sizeof(data));
    if (error != ERROR_SUCCESS) break;
  }
  RegCloseKey(key);
  return ResultOf(error);
}

HRESULT PALAPI PALKEYSetKeyTapVol(DWORD level) {
  return WriteTapVolume(TEXT("Key"), level);
}
HRESULT PALAPI PALKEYGetKeyTapVol(DWORD* level) {
  return ReadTapVolume(TEXT("Key"), level);
}

HRESULT PALAPI PALKEYGetType(DWORD* type) {
  if (type == nullptr) return E_FAIL;
  DWORD request = 0x35;
  DWORD bytes = 0;
  *type = 0;
  if (KernelIoControl(0x010122C4, &request, sizeof(request), type, sizeof(*type), &bytes) ==
          FALSE ||
      bytes == 0) {
    *type = 0;
  }
  return S_OK;
}
