// The events that tell others of changed power settings.
#ifndef POWER_EVENTS_H_
#define POWER_EVENTS_H_

#include "platform/wince.h"

namespace pal {

// Tells the power manager to read its timeouts again. Null before PALPWRInit and after PALPWRTerm.
[[nodiscard]] HANDLE ReloadEvent();

}  // namespace pal

#endif  // POWER_EVENTS_H_
