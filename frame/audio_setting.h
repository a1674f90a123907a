// Telling the audio driver that its registry settings have changed.
#ifndef FRAME_AUDIO_SETTING_H_
#define FRAME_AUDIO_SETTING_H_

#include "platform/wince.h"

namespace pal {

// Calls "AudioUpdateFromRegistry" of coredll, which is looked up at each call. Its own result is
// ignored.
//
// S_OK    called
// E_FAIL  coredll cannot be loaded or has no such entry; traced with the display's facility
[[nodiscard]] HRESULT ApplyAudioSetting();

}  // namespace pal

#endif  // FRAME_AUDIO_SETTING_H_
