// Result codes: their two kinds, and the translation of system errors. The thread's last error.
#ifndef FRAME_RESULT_H_
#define FRAME_RESULT_H_

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
  return error <= 0 ? error : PAL_E_WIN32(static_cast<DWORD>(error) & 0xFFFFU);
}
constexpr HRESULT HResultFromWin32(DWORD error) {
  return HResultFromWin32(static_cast<LONG>(error));
}

// Keeps the thread's last error over calls that may change it.
class PreservedLastError {
 public:
  PreservedLastError() : error_(GetLastError()) {}
  ~PreservedLastError() { SetLastError(error_); }
  PreservedLastError(const PreservedLastError&) = delete;
  PreservedLastError& operator=(const PreservedLastError&) = delete;

 private:
  DWORD error_;
};

}  // namespace pal

#endif  // FRAME_RESULT_H_
