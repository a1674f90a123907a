// The click of a tap, on a key or on the screen: one rule for both volumes.
#ifndef FRAME_TAP_VOLUME_H_
#define FRAME_TAP_VOLUME_H_

#include "frame/trace.h"
#include "platform/wince.h"

namespace pal {

// The value of a volume, and the lines of its family. The last two lines show the key and the
// value.
struct TapVolume {
  TraceSource trace;
  const WCHAR* value_name;  // a DWORD under HKEY_CURRENT_USER "ControlPanel\Volume"
  TraceSource::Format<DWORD> invalid_input;
  TraceSource::Format<const WCHAR*, const WCHAR*> write_failed;
  TraceSource::Format<const WCHAR*, const WCHAR*> read_failed;
};

// Tells the audio driver that its registry settings have changed: calls "AudioUpdateFromRegistry"
// of coredll, which is looked up at each call. Its own result is ignored. E_FAIL where coredll
// cannot be loaded or has no such entry; traced with the display's facility.
[[nodiscard]] HRESULT ApplyAudioSetting();

// The next two functions have the results of PALDISPSetScreenTapVol and PALDISPGetScreenTapVol, and
// trace every failure but a null `level`.

// Stores a level (0, 1 or 2) and has the audio driver read its settings again. Levels 0 and 1 are
// stored as they are, level 2 as 0x10002.
[[nodiscard]] HRESULT SetTapVolume(const TapVolume& volume, DWORD level);

// Reads the level back: 0x10002 is 2, 0x10000 is 0, anything else is what is stored. `level` is
// written on success only.
[[nodiscard]] HRESULT GetTapVolume(const TapVolume& volume, DWORD* level);

}  // namespace pal

#endif  // FRAME_TAP_VOLUME_H_
