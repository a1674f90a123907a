// Requests to the notification-LED driver, which also drives the vibrator.
#ifndef FEEDBACK_NOTIFICATION_LED_H_
#define FEEDBACK_NOTIFICATION_LED_H_

#include "platform/wince.h"

namespace pal {

inline constexpr INT kLedOff = 0;
inline constexpr INT kLedOn = 1;
inline constexpr INT kLedBlink = 2;

// False where the driver refuses. It is given no times, so that its own defaults apply.
[[nodiscard]] inline bool SetNotificationLed(LONG number, INT command) {
  NLED_SETTINGS_INFO settings{};
  settings.LedNum = static_cast<UINT>(number);
  settings.OffOnBlink = command;
  return NLedSetDevice(NLED_SETTINGS_INFO_ID, &settings) != FALSE;
}

}  // namespace pal

#endif  // FEEDBACK_NOTIFICATION_LED_H_
