// The stored indicator of each kind of scanner: the tones and the vibration of a good read.
#ifndef FEEDBACK_GOOD_READ_INDICATOR_H_
#define FEEDBACK_GOOD_READ_INDICATOR_H_

#include <array>

#include "frame/registry.h"

namespace pal {

// By scan type.
inline constexpr std::array<const WCHAR*, 4> kIndicatorNames{TEXT("IntGRI"), TEXT("TethGRI"),
                                                             TEXT("BTGRI"), TEXT("RFIDGRI")};
inline constexpr DWORD kInternalScanner = 0;

// The read's result; `value` is written on success only. `scan_type` is in range.
[[nodiscard]] HRESULT ReadGoodReadIndicator(DWORD scan_type, DWORD& value);

}  // namespace pal

#endif  // FEEDBACK_GOOD_READ_INDICATOR_H_
