// Telling the keypad driver that its layout has changed.
#ifndef KEYPAD_DRIVER_RELOAD_H_
#define KEYPAD_DRIVER_RELOAD_H_

#include "frame/trace.h"
#include "platform/wince.h"

namespace pal {

// Who tells it, in the lines.
struct DriverReloadLines {
  TraceSource::Format<> flushing;
  TraceSource::Format<const WCHAR*, DWORD> open_failed;
  TraceSource::Format<const WCHAR*, DWORD> flush_failed;
};

// Flushes the driver's key and then sets the event, so that the driver, once it is awake, reads
// what lasts. Without the event nothing is done and nothing has failed; a flush that fails does not
// keep the event from being set.
//
// S_OK    done
// E_FAIL  the driver's key cannot be opened; the event is not set. Traced.
[[nodiscard]] HRESULT ReloadKeypadDriver(const WCHAR* event_name, const DriverReloadLines& lines);

}  // namespace pal

#endif  // KEYPAD_DRIVER_RELOAD_H_
