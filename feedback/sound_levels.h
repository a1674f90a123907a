// The volume of the wave output and the gain of the codec: what a beep sets and puts back.
#ifndef FEEDBACK_SOUND_LEVELS_H_
#define FEEDBACK_SOUND_LEVELS_H_

#include "platform/wince.h"

namespace pal {

enum class Codec { kSet, kLeave };

// Finds the gain that belongs to the speaker's current level, 66 where that has none, and sets the
// codec to it or leaves the codec alone. A driver that refuses the gain is only traced.
//
// S_OK    done
// E_FAIL  the current level cannot be told; traced
[[nodiscard]] HRESULT PALBEEPSetCurVolsGain(Codec codec);

// Reads the headset's volume word, "CurrentHeadset", with the result of the read. `word` is written
// on success only.
[[nodiscard]] HRESULT GetBeepsSysVolume(DWORD& word);

// Both give E_FAIL where the driver refuses. The read is then traced and leaves `word` unchanged.
[[nodiscard]] HRESULT PALBEEPGetCurSysVol(DWORD& word);
[[nodiscard]] HRESULT PALBEEPSetBeepsCurSysVol(DWORD word);

// E_FAIL where the driver refuses, which is traced; `gain` is then unchanged.
[[nodiscard]] HRESULT PALBEEPGetCurGain(DWORD& gain);
void PALBEEPRestoreGain(DWORD gain);

}  // namespace pal

#endif  // FEEDBACK_SOUND_LEVELS_H_
