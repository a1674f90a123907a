// The device's non-volatile parameters, written at the factory.
#ifndef SYSINFO_NONVOLATILE_PARAMETERS_H_
#define SYSINFO_NONVOLATILE_PARAMETERS_H_

#include <span>

#include "platform/wince.h"

// Reads one parameter. `request` begins with its 16-bit id, low byte first; how many bytes the
// kernel wants behind the id depends on the parameter. A parameter may bring fewer bytes than
// `answer` has room for: the rest of `answer` stays as it was. `bytes_returned` is what the kernel
// says it wrote, at most answer.size(), and 0 where the read fails.
//
// False where the read fails; the last error is then that of the call.
[[nodiscard]] bool PalReadNvParm(std::span<const BYTE> request, std::span<BYTE> answer,
                                 DWORD& bytes_returned);

#endif  // SYSINFO_NONVOLATILE_PARAMETERS_H_
