// The beeper's registry key, and the levels around a beep: read, set and put back.
#ifndef FEEDBACK_VOLUME_H_
#define FEEDBACK_VOLUME_H_

#include "platform/wince.h"

namespace pal {

// Below HKEY_LOCAL_MACHINE: volumes and gains of the levels, and the sounds' files.
inline constexpr const WCHAR* kBeeperPath = TEXT("Software\\Dravonel\\BeeperVol");

// The volume word of the level VeryLow, as it is built in.
inline constexpr DWORD kVeryLowVolume = 0x33333333;

// Sets the codec gain that belongs to the speaker's current level; 66 where that has none. The
// driver's refusal is only traced.
//
// S_OK    the gain was given to the driver
// E_FAIL  the current level cannot be told; traced
[[nodiscard]] HRESULT PALBEEPSetCurVolsGain();

// The headset's volume word, "CurrentHeadset": the result of its read. `word` is written on success
// only.
[[nodiscard]] HRESULT GetBeepsSysVolume(DWORD& word);

// The volume of the wave output. All give E_FAIL where the driver refuses; the read is then traced
// and leaves `word` as it was.
[[nodiscard]] HRESULT PALBEEPGetCurSysVol(DWORD& word);
[[nodiscard]] HRESULT PALBEEPSetBeepsCurSysVol(DWORD word);
[[nodiscard]] HRESULT PALBEEPRestoreVol(DWORD word);

// The codec's gain. E_FAIL where the driver refuses; `gain` is then left as it was.
[[nodiscard]] HRESULT PALBEEPGetCurGain(DWORD& gain);
// Always S_OK.
[[nodiscard]] HRESULT PALBEEPRestoreGain(DWORD gain);

}  // namespace pal

#endif  // FEEDBACK_VOLUME_H_
