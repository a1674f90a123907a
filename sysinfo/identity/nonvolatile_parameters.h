// The device's non-volatile parameters, written at the factory.
#ifndef SYSINFO_IDENTITY_NONVOLATILE_PARAMETERS_H_
#define SYSINFO_IDENTITY_NONVOLATILE_PARAMETERS_H_

#include <algorithm>
#include <span>

#include "platform/wince.h"

namespace pal {

// Reads one parameter. `request` begins with its 16-bit id, low byte first; how many bytes the
// kernel wants behind the id depends on the parameter. A parameter may bring fewer bytes than
// `answer` has room for: the rest of `answer` stays as it was. `bytes_returned` is what the kernel
// says it wrote, at most answer.size(), and 0 where the read fails.
//
// False where the read fails; the last error is then that of the call.
[[nodiscard]] inline bool PalReadNvParm(std::span<const BYTE> request, std::span<BYTE> answer,
                                        DWORD& bytes_returned) {
  constexpr DWORD kReadParameter = 0x010122C4;
  bytes_returned = 0;
  const auto answer_bytes = static_cast<DWORD>(answer.size());
  DWORD returned = 0;
  // The kernel only reads the request, though the call takes it without const.
  if (KernelIoControl(kReadParameter, const_cast<BYTE*>(request.data()),
                      static_cast<DWORD>(request.size()), answer.data(), answer_bytes,
                      &returned) == FALSE) {
    return false;
  }
  bytes_returned = std::min(returned, answer_bytes);
  return true;
}

}  // namespace pal

#endif  // SYSINFO_IDENTITY_NONVOLATILE_PARAMETERS_H_
