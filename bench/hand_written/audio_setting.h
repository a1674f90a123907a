// The volume of taps, and telling the audio driver of it.
#ifndef BENCH_HAND_WRITTEN_AUDIO_SETTING_H_
#define BENCH_HAND_WRITTEN_AUDIO_SETTING_H_

#include "platform/wince.h"

HRESULT WriteTapVolume(const WCHAR* name, DWORD level);
HRESULT ReadTapVolume(const WCHAR* name, DWORD* level);

#endif  // BENCH_HAND_WRITTEN_AUDIO_SETTING_H_
