// Where a button's layout is, and the texts of its events.
#ifndef KEYPAD_LAYOUT_H_
#define KEYPAD_LAYOUT_H_

#include <array>
#include <span>

#include "frame/text.h"
#include "frame/unique_handle.h"
#include "keypad/button_table.h"
#include "platform/wince.h"

namespace pal {

// The largest path of a layout, and room for it with what stands before it and behind it.
inline constexpr size_t kMaxLayoutUnits = 260;
using LayoutPath = std::array<WCHAR, kMaxLayoutUnits + 60>;

// The keys with the names of the events, below a layout.
inline constexpr WideText kDeltaEvents = TEXT("\\EVENTS\\DELTA");
inline constexpr WideText kStateEvents = TEXT("\\EVENTS\\STATE");

// The path of a key below a layout: "\ShiftKeys".
[[nodiscard]] LayoutPath BelowLayout(const LayoutPath& layout, WideText subkey);

// Opens a key under HKEY_LOCAL_MACHINE with full access.
[[nodiscard]] LONG OpenKeypadKey(const WCHAR* path, UniqueRegistryKey& key);

// Reads a text of at most text.size() - 1 units and ends it, whatever type and end its data have.
// Returns the error of the read; `text` is then as it was.
[[nodiscard]] LONG ReadKeypadText(HKEY key, const WCHAR* name, std::span<WCHAR> text);

// Finds the path of a button's layout. It is the path as far as it is known also on failure.
//
// S_OK    done
// E_FAIL  the key that names the layout cannot be opened, or its value cannot be read or has more
//         than 260 units. Traced.
[[nodiscard]] HRESULT ResolveButtonKeyPath(LayoutPath& path, const ButtonRecord& button);

// Writes the name of an event, without its terminator: so the driver's other texts are. The key has
// to exist.
//
// S_OK    done
// E_FAIL  the key cannot be opened, or the value cannot be written
HRESULT CreateEventForEventKey(const WCHAR* path, const WCHAR* value_name, const WCHAR* event_name);

// Whether plane 0 of the active layout has a record of the button; the handle's own layout is not
// asked. A plane of more than 1024 bytes has none.
[[nodiscard]] bool ButtonIsSupported(LONG button);

// What CreateEventForEventKey writes, into a key that is open.
[[nodiscard]] LONG WriteEventName(HKEY key, const WCHAR* value_name, const WCHAR* event_name);

}  // namespace pal

#endif  // KEYPAD_LAYOUT_H_
