// The level that is set for the speaker or the headset.
#ifndef FEEDBACK_VOLUME_H_
#define FEEDBACK_VOLUME_H_

#include "platform/wince.h"

namespace pal {

// The built-in volume word of the level VeryLow.
inline constexpr DWORD kVeryLowVolume = 0x33333333;

// Reads the level (0 to 5) of kSpeaker or kHeadset, and writes the speaker's level back: where the
// word of a level has changed, the speaker gets the new word.
//
// S_OK    done
// E_FAIL  the word that is set cannot be read, which is traced, or no level has it; `level` is
//         unchanged
[[nodiscard]] HRESULT GetVolume(DWORD type, DWORD& level);

}  // namespace pal

#endif  // FEEDBACK_VOLUME_H_
