// The keypad family's own failures.
#ifndef KEYPAD_KEYPAD_RESULT_H_
#define KEYPAD_KEYPAD_RESULT_H_

#include "frame/result.h"

namespace pal {

inline constexpr HRESULT kNoSuchControlKey = FamilyFailure(Facility::kKeypad, 4);
inline constexpr HRESULT kActionOutOfRange = FamilyFailure(Facility::kKeypad, 5);
inline constexpr HRESULT kButtonNotSupported = FamilyFailure(Facility::kKeypad, 7);

}  // namespace pal

#endif  // KEYPAD_KEYPAD_RESULT_H_
