// Result codes: translation of system errors, and the families' own failures.
#ifndef FRAME_RESULT_H_
#define FRAME_RESULT_H_

#include "frame/facility.h"
#include "platform/wince.h"

namespace pal {

constexpr bool Failed(HRESULT result) {
  return result < 0;
}
constexpr bool Succeeded(HRESULT result) {
  return result >= 0;
}

// The result for a system error, from a registry call or from GetLastError: an error that is zero
// or negative is its own result, any other keeps its low 16 bits under 0x80070000.
constexpr HRESULT HResultFromWin32(LONG error) {
  return error <= 0 ? error
                    : static_cast<HRESULT>(0x80070000U | (static_cast<DWORD>(error) & 0xFFFFU));
}
constexpr HRESULT HResultFromWin32(DWORD error) {
  return HResultFromWin32(static_cast<LONG>(error));
}

// A failure of a family's own: code 7 of the keypad is 0x83ED0007.
constexpr HRESULT FamilyFailure(Facility facility, WORD code) {
  return static_cast<HRESULT>(0x80000000U | (static_cast<DWORD>(facility) << 16) | code);
}

}  // namespace pal

#endif  // FRAME_RESULT_H_
