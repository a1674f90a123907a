// The programmable buttons: one record for each, found by the button's number.
#ifndef KEYPAD_BUTTON_TABLE_H_
#define KEYPAD_BUTTON_TABLE_H_

#include <array>

#include "include/palkey.h"
#include "platform/wince.h"

namespace pal {

// The key that names the active layout.
inline constexpr const WCHAR* kKeyboardPath = TEXT("Hardware\\Devicemap\\Keybd");
inline constexpr const WCHAR* kActiveLayoutValue = TEXT("CurrentActiveLayoutKey");
// The library's own settings: the saved records of buttons and the repair's flag.
inline constexpr const WCHAR* kKeypadSettingsPath = TEXT("Software\\Dravonel\\PAL");

// The shift planes of a layout. The saved records of buttons stand under the same names.
inline constexpr std::array<const WCHAR*, 3> kShiftPlanes = {
    TEXT("ShiftPlane0"), TEXT("ShiftPlane1"), TEXT("ShiftPlane2")};

// What the driver signals for a button: on each change, and for as long as it is held.
struct ActionEvents {
  const WCHAR* delta;
  const WCHAR* state;
};

inline constexpr size_t kActionCount = 7;

struct ButtonRecord {
  // Of `flags`: the layout's path is the key's own with the value's text behind it.
  static constexpr DWORD kLayoutBelowKey = 2;

  LONG id;  // its number
  const char* name;
  DWORD flags;
  DWORD scan_code;
  const WCHAR* key_path;
  const WCHAR* value_name;                               // null: `key_path` is the layout itself
  const WCHAR* event_value_name;                         // ends with the number of the event
  std::array<ActionEvents, kActionCount> action_events;  // action 1 first
  const WCHAR* multikey_value_name;                      // null: no combination of keys
  std::array<BYTE, 7> multikey_data;
  const WCHAR* change_event_name;  // null: nobody is told of a change
  // A key of the keyboard, which has an ordinary meaning of its own. Its records in the planes are
  // saved and rewritten for any other one.
  bool is_ordinary_key;
};

namespace button_detail {

// Action 3 differs from button to button.
constexpr std::array<ActionEvents, kActionCount> EventsWith(ActionEvents reader) {
  return {{
      {TEXT("DeltaLeftScan"), TEXT("StateLeftScan")},
      {TEXT("DVL_RFID_TRIGGER_EVENT"), TEXT("DVL_RFID_TRIGGER_STATE")},
      reader,
      {TEXT("DeltaCameraScan"), TEXT("StateCameraScan")},
      {TEXT("DeltaFlashlight"), TEXT("StateFlashlight")},
      {TEXT("DeltaWindowsDefault"), TEXT("StateWindowsDefault")},
      {TEXT("DeltaOEMTriggerEvent"), TEXT("StateOEMTriggerEvent")},
  }};
}

inline constexpr ActionEvents kCenterReader{TEXT("RFIDDCE_CENTER_DELTA"),
                                            TEXT("RFIDDCE_CENTER_STATE")};
inline constexpr ActionEvents kLeftReader{TEXT("RFIDDCE_LEFT_DELTA"), TEXT("RFIDDCE_LEFT_STATE")};
inline constexpr ActionEvents kMiddleReader{TEXT("RFIDDCE_MIDDLE_DELTA"),
                                            TEXT("RFIDDCE_MIDDLE_STATE")};
inline constexpr ActionEvents kRightReader{TEXT("RFIDDCE_RIGHT_DELTA"),
                                           TEXT("RFIDDCE_RIGHT_STATE")};

constexpr ButtonRecord OnKeyboard(LONG id, const char* name, DWORD scan_code,
                                  const WCHAR* event_value_name, ActionEvents reader,
                                  bool is_ordinary_key) {
  return {.id = id,
          .name = name,
          .flags = 1,
          .scan_code = scan_code,
          .key_path = kKeyboardPath,
          .value_name = kActiveLayoutValue,
          .event_value_name = event_value_name,
          .action_events = EventsWith(reader),
          .multikey_value_name = nullptr,
          .multikey_data = {},
          .change_event_name = TEXT("DVL_KEYBOARD_CHANGE_USB"),
          .is_ordinary_key = is_ordinary_key};
}

inline constexpr ButtonRecord kHandle{.id = 0,
                                      .name = "Handle",
                                      .flags = 0,
                                      .scan_code = 0,
                                      .key_path = TEXT("Software\\Dravonel\\RFIDServer\\Keybd"),
                                      .value_name = nullptr,
                                      .event_value_name = TEXT("Event1"),
                                      .action_events = EventsWith(kCenterReader),
                                      .multikey_value_name = nullptr,
                                      .multikey_data = {},
                                      .change_event_name = nullptr,
                                      .is_ordinary_key = false};
inline constexpr ButtonRecord kLeftBottom =
    OnKeyboard(2, "Left Side Bottom", 0x91, TEXT("Event2"), kLeftReader, false);
inline constexpr ButtonRecord kMiddle =
    OnKeyboard(3, "Middle", 0x90, TEXT("Event1"), kMiddleReader, false);
inline constexpr ButtonRecord kLeftTop =
    OnKeyboard(5, "Left Side Top", 0x43, TEXT("Event5"), kLeftReader, true);
inline constexpr ButtonRecord kRightTop =
    OnKeyboard(6, "Right Side Top", 0x3F, TEXT("Event6"), kRightReader, true);
inline constexpr ButtonRecord kRightBottom =
    OnKeyboard(7, "Right Side Bottom", 0x40, TEXT("Event7"), kRightReader, true);

}  // namespace button_detail

// A handle whose trigger is wired to the keyboard. No device of today has it, and no number finds
// it.
inline constexpr ButtonRecord kKeyboardHandle = button_detail::OnKeyboard(
    PAL_KEY_BUTTON_COUNT, "Handle", 0x90, TEXT("Event1"), button_detail::kMiddleReader, false);
// Names of buttons that no device of today has.
inline constexpr std::array<const char*, 2> kUnusedButtonNames = {"Left Front", "Right Front"};

// By number; null for one that no device has.
inline constexpr std::array<const ButtonRecord*, PAL_KEY_BUTTON_COUNT> kButtonRecords = {
    &button_detail::kHandle,
    nullptr,
    &button_detail::kLeftBottom,
    &button_detail::kMiddle,
    nullptr,
    &button_detail::kLeftTop,
    &button_detail::kRightTop,
    &button_detail::kRightBottom,
};
static_assert([] {
  for (size_t id = 0; id < kButtonRecords.size(); ++id) {
    const ButtonRecord* const button = kButtonRecords[id];
    if (button != nullptr && static_cast<size_t>(button->id) != id) return false;
  }
  return true;
}());

inline constexpr const ButtonRecord& kLeftBottomButton = button_detail::kLeftBottom;
inline constexpr const ButtonRecord& kLeftTopButton = button_detail::kLeftTop;

// Null for a number that is none of a button.
constexpr const ButtonRecord* FindButton(LONG button) {
  const auto index = static_cast<DWORD>(button);
  return index < kButtonRecords.size() ? kButtonRecords[index] : nullptr;
}

}  // namespace pal

#endif  // KEYPAD_BUTTON_TABLE_H_
