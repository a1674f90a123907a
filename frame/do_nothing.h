// The one function behind every export that has nothing to do on these devices.
#ifndef FRAME_DO_NOTHING_H_
#define FRAME_DO_NOTHING_H_

#include "platform/wince.h"

// Its exported names stand in exports.def; they are as visible as it is.
PAL_INTERFACE_BEGIN

// S_OK, whatever the caller passes.
HRESULT PALAPI PALDoNothing();

PAL_INTERFACE_END

#endif  // FRAME_DO_NOTHING_H_
