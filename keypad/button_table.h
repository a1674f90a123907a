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

// The events that the driver signals for a button: on each change, and for as long as it is held.
struct ActionEvents {
  const WCHAR* delta;
  const WCHAR* state;
};

inline constexpr size_t kActionCount = 7;

// The format of the keypad's data has more than any button uses, and there is no code for it: a
// layout below the key that names it (flag 2), and combinations of keys ("\\MULTIKEYS" when read,
// "\\MULTIKEY" when written).
struct ButtonRecord {
  LONG id;
  const char* name;
  DWORD scan_code;
  const WCHAR* key_path;
  const WCHAR* value_name;                               // null: `key_path` is the layout itself
  const WCHAR* event_value_name;                         // ends with the number of the event
  std::array<ActionEvents, kActionCount> action_events;  // action 1 first
  const WCHAR* change_event_name;                        // null: nobody is told of a change
  // An ordinary key of the keyboard. Its records in the planes are saved, and rewritten for any
  // other action.
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
          .scan_code = scan_code,
          .key_path = kKeyboardPath,
          .value_name = kActiveLayoutValue,
          .event_value_name = event_value_name,
          .action_events = EventsWith(reader),
          .change_event_name = TEXT("DVL_KEYBOARD_CHANGE_USB"),
          .is_ordinary_key = is_ordinary_key};
}

inline constexpr ButtonRecord kHandle{.id = 0,
                                      .name = "Handle",
                                      .scan_code = 0,
                                      .key_path = TEXT("Software\\Dravonel\\RFIDServer\\Keybd"),
                                      .value_name = nullptr,
                                      .event_value_name = TEXT("Event1"),
                                      .action_events = EventsWith(kCenterReader),
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

// No device of today has a second "Handle" (wired to the keyboard: scan code 0x90, "Event1" and the
// middle reader's events), a "Left Front" or a "Right Front" button.

// By number; null for a button that no device has.
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

// Null for a number without a button.
constexpr const ButtonRecord* FindButton(LONG button) {
  const auto index = static_cast<DWORD>(button);
  return index < kButtonRecords.size() ? kButtonRecords[index] : nullptr;
}

}  // namespace pal

#endif  // KEYPAD_BUTTON_TABLE_H_
