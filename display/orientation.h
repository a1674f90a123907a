// The rotation of the screen.
#ifndef DISPLAY_ORIENTATION_H_
#define DISPLAY_ORIENTATION_H_

#include "platform/wince.h"

namespace pal {

// Both in degrees, with the results of the exports over them.
[[nodiscard]] HRESULT PALSetScreenOrientation(LONG angle);
[[nodiscard]] HRESULT PALGetScreenOrientation(LONG* angle);

}  // namespace pal

#endif  // DISPLAY_ORIENTATION_H_
