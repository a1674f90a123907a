// Playing the sound of an event, with the volume and the gain around it.
#ifndef FEEDBACK_BEEP_PLAYER_H_
#define FEEDBACK_BEEP_PLAYER_H_

#include "platform/wince.h"

namespace pal {

inline constexpr DWORD kPlayThrough = SND_FILENAME;
inline constexpr DWORD kLoop = SND_FILENAME | SND_LOOP | SND_ASYNC;

// Plays the file that the value `name` of the beeper's key holds, `count` times and at least once.
// Headset or speaker give the volume; at volume 0, and where the value is empty, nothing is played.
// A sound that is played through leaves volume and gain as it found them. A loop leaves its own set
// until StopTagSearch.
//
// S_OK                done, also where the file cannot be played, which is traced
// E_FAIL              the volume cannot be put back, or, at volume 0, cannot be set; traced
// PAL_E_WIN32(error)  the error of reading the value; traced
[[nodiscard]] HRESULT PlayDvlSynchronousBeep(int count, const WCHAR* name, DWORD flags);

// Ends the sound that is playing, and puts back the volume and the gain that the loop found. What
// cannot be put back stays saved for the next call.
//
// S_OK                done
// E_FAIL              the volume cannot be put back; traced
// PAL_E_WIN32(error)  the error of stopping the sound; traced
[[nodiscard]] HRESULT StopTagSearch();

}  // namespace pal

#endif  // FEEDBACK_BEEP_PLAYER_H_
