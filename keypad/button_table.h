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

}  // namespace button_detail

// No device of today has a second "Handle" (wired to the keyboard: scan code 0x90, "Event1" and the
// middle reader's events), a "Left Front" or a "Right Front" button.
inline constexpr std::array<ButtonRecord, 6> kButtonRecords = {{
    {.id = PAL_BUTTON_HANDLE,
     .name = "Handle",
     .scan_code = 0,
     .key_path = TEXT("Software\\Dravonel\\RFIDServer\\Keybd"),
     .value_name = nullptr,
     .event_value_name = TEXT("Event1"),
     .action_events = button_detail::EventsWith(button_detail::kCenterReader),
     .change_event_name = nullptr,
     .is_ordinary_key = false},
    button_detail::OnKeyboard(PAL_BUTTON_LEFT_SIDE_BOTTOM, "Left Side Bottom", 0x91, TEXT("Event2"),
                              button_detail::kLeftReader, false),
    button_detail::OnKeyboard(PAL_BUTTON_MIDDLE, "Middle", 0x90, TEXT("Event1"),
                              button_detail::kMiddleReader, false),
    button_detail::OnKeyboard(PAL_BUTTON_LEFT_SIDE_TOP, "Left Side Top", 0x43, TEXT("Event5"),
                              button_detail::kLeftReader, true),
    button_detail::OnKeyboard(PAL_BUTTON_RIGHT_SIDE_TOP, "Right Side Top", 0x3F, TEXT("Event6"),
                              button_detail::kRightReader, true),
    button_detail::OnKeyboard(PAL_BUTTON_RIGHT_SIDE_BOTTOM, "Right Side Bottom", 0x40,
                              TEXT("Event7"), button_detail::kRightReader, true),
}};

// Null for a number without a button.
constexpr const ButtonRecord* FindButton(LONG button) {
  for (const ButtonRecord& record : kButtonRecords) {
    if (record.id == button) return &record;
  }
  return nullptr;
}

}  // namespace pal

#endif  // KEYPAD_BUTTON_TABLE_H_
