// The trace source of the keypad family.
#ifndef KEYPAD_KEYPAD_TRACE_H_
#define KEYPAD_KEYPAD_TRACE_H_

#include "frame/trace.h"

namespace pal {

inline constexpr TraceSource kKeypadTrace{Facility::kKeypad};

}  // namespace pal

#endif  // KEYPAD_KEYPAD_TRACE_H_
