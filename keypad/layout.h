// The path of a button's layout, and the names of its events.
#ifndef KEYPAD_LAYOUT_H_
#define KEYPAD_LAYOUT_H_

#include <array>
#include <span>

#include "frame/text.h"
#include "frame/unique_handle.h"
#include "keypad/button_table.h"
#include "platform/wince.h"

namespace pal {

// The longest path of a layout, and room for it with a subkey behind it.
inline constexpr size_t kMaxLayoutUnits = 260;
using LayoutPath = std::array<WCHAR, kMaxLayoutUnits + 60>;

// The keys with the names of the events, below a layout.
inline constexpr WideText kDeltaEvents = TEXT("\\EVENTS\\DELTA");
inline constexpr WideText kStateEvents = TEXT("\\EVENTS\\STATE");

// The path of a key below a layout: "\ShiftKeys".
[[nodiscard]] LayoutPath BelowLayout(const LayoutPath& layout, WideText subkey);

// Opens a key under HKEY_LOCAL_MACHINE with full access.
[[nodiscard]] LONG OpenKeypadKey(const WCHAR* path, UniqueRegistryKey& key);

// Reads the path of a layout, of at most 260 units.
[[nodiscard]] LONG ReadLayoutPath(const UniqueRegistryKey& key, const WCHAR* name,
                                  LayoutPath& layout);

// Finds the path of a button's layout. On failure `path` is the key that names the layout.
//
// S_OK    done
// E_FAIL  the key that names the layout cannot be opened, or its value cannot be read or has more
//         than 260 units. Traced.
[[nodiscard]] HRESULT ResolveButtonKeyPath(LayoutPath& path, const ButtonRecord& button);

// Writes the name of an event, without a terminator like the driver's other texts. The key has to
// exist.
//
// S_OK    done
// E_FAIL  the key cannot be opened, or the value cannot be written
HRESULT CreateEventForEventKey(const WCHAR* path, const WCHAR* value_name, const WCHAR* event_name);

// True where plane 0 of the active layout has a record of the button; the handle's own layout is
// not read. A plane of more than 1024 bytes has no records here.
[[nodiscard]] bool ButtonIsSupported(LONG button);

}  // namespace pal

#endif  // KEYPAD_LAYOUT_H_
