// The buttons that are ordinary keys: switching between the ordinary meaning and an event.
#ifndef KEYPAD_ORDINARY_KEY_H_
#define KEYPAD_ORDINARY_KEY_H_

#include <array>
#include <optional>

#include "frame/trace.h"
#include "keypad/layout.h"
#include "keypad/shift_plane.h"

namespace pal {

// Actions as an index into a button's events: one less than callers count.
inline constexpr size_t kWindowsDefault = PAL_KEY_ACTION_WINDOWS_DEFAULT - 1;

// The action of a button without an event name. Nothing for a button that is no ordinary key.
[[nodiscard]] std::optional<size_t> GetActionForDefaultWindowsKeys(const ButtonRecord& button);

// Saves an ordinary key's record of each plane, and has the key signal its event instead. Does
// nothing for another button, where `current_action` (as callers count) is not the ordinary one, or
// for the state's event.
//
// The result of the last write that was made, S_OK without any. A plane without a record of the
// button, or whose record cannot be read, is skipped. A record that cannot be saved stays in place;
// a saved plane of kMaxPlaneBytes or more takes no record, which is E_FAIL.
[[nodiscard]] HRESULT SetupKeyForScanKeys(const LayoutPath& layout, const ButtonRecord& button,
                                          DWORD current_action, bool is_state);

// Restores an ordinary key's saved record of each plane. Does nothing for another button, where
// `action` is not the ordinary one, or for the state's event.
//
// The result of the last plane; earlier planes' failures are only traced. A plane for which no
// record was saved, or can be read, is skipped with S_OK.
[[nodiscard]] HRESULT SetupKeyForWinDefkeys(const LayoutPath& layout, const ButtonRecord& button,
                                            size_t action, bool is_state);

// By plane: the line for a button without a record there.
using NoValuesLines = std::array<TraceSource::Format<const char*>, kShiftPlanes.size()>;

// Reads a button's record of plane `plane` (0 to 2), with the result of GetKeyValues. Where there
// is none, or where it cannot be read, that is traced and `record` is nothing.
[[nodiscard]] HRESULT ReadKeyRecord(const NoValuesLines& no_values, const WCHAR* layout,
                                    size_t plane, const ButtonRecord& button,
                                    std::optional<KeyRecord>& record);

}  // namespace pal

#endif  // KEYPAD_ORDINARY_KEY_H_
