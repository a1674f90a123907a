// Telling the keypad driver that its layout has changed.
#ifndef KEYPAD_DRIVER_RELOAD_H_
#define KEYPAD_DRIVER_RELOAD_H_

#include "frame/trace.h"
#include "platform/wince.h"

namespace pal {

// The lines of the caller.
struct DriverReloadLines {
  TraceSource::Format<> flushing;
  TraceSource::Format<const WCHAR*, DWORD> open_failed;
  TraceSource::Format<const WCHAR*, DWORD> flush_failed;
};

// Flushes the driver's key and then sets the event, so that the driver reads values that are
// stored. Where the event cannot be created nothing is done, with S_OK; where the flush fails the
// event is set all the same.
//
// S_OK    done
// E_FAIL  the driver's key cannot be opened; the event is not set. Traced.
[[nodiscard]] HRESULT ReloadKeypadDriver(const WCHAR* event_name, const DriverReloadLines& lines);

}  // namespace pal

#endif  // KEYPAD_DRIVER_RELOAD_H_
