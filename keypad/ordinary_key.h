// The buttons that are keys of the keyboard: between their ordinary meaning and an event.
#ifndef KEYPAD_ORDINARY_KEY_H_
#define KEYPAD_ORDINARY_KEY_H_

#include <optional>

#include "keypad/layout.h"
#include "keypad/shift_plane.h"

namespace pal {

// Actions as an index into a button's events: one less than callers count.
inline constexpr size_t kWindowsDefault = PAL_KEY_ACTION_WINDOWS_DEFAULT - 1;

// What a button does for which no event has been named. Nothing for one that is no ordinary key.
[[nodiscard]] std::optional<size_t> GetActionForDefaultWindowsKeys(const ButtonRecord& button);

// Where an ordinary key ceases to be one, saves its record of each plane and has the key signal its
// event instead. Does nothing for another button, or where `current_action` (as callers count) is
// not the ordinary one, or for the state's event.
//
// The result of the last plane; earlier ones' failures show in the trace alone. A plane without a
// record of the button is skipped, and one whose record cannot be saved keeps it; among the saved
// planes one of kMaxPlaneBytes and more takes no record, which is E_FAIL.
[[nodiscard]] HRESULT SetupKeyForScanKeys(const LayoutPath& layout, const ButtonRecord& button,
                                          DWORD current_action, bool is_state);

// Where a key becomes ordinary again, restores its record of each plane. Does nothing for another
// button, or where `action` is not the ordinary one, or for the state's event.
//
// The result of the last plane; earlier ones' failures show in the trace alone. A plane for which
// no record was saved, or can be read, is skipped with S_OK.
[[nodiscard]] HRESULT SetupKeyForWinDefkeys(const LayoutPath& layout, const ButtonRecord& button,
                                            size_t action, bool is_state);

// Reads a button's record of plane `plane` (0 to 2), with the result of GetKeyValues. Where there
// is none, or where it cannot be read, an error line says so for `function`, and `record` is
// nothing.
[[nodiscard]] HRESULT ReadKeyRecord(const char* function, const WCHAR* layout, size_t plane,
                                    const ButtonRecord& button, std::optional<KeyRecord>& record);

}  // namespace pal

#endif  // KEYPAD_ORDINARY_KEY_H_
