// The device's non-volatile parameters, written at the factory and read through the kernel.
#ifndef SYSINFO_NONVOLATILE_PARAMETERS_H_
#define SYSINFO_NONVOLATILE_PARAMETERS_H_

#include <span>

#include "platform/wince.h"

// Reads one parameter. `request` begins with its 16-bit id, low byte first; some parameters are
// asked for with a longer request. `bytes_returned` is at most the size of `answer`, also where the
// driver claims more. False where the call fails: its error is then the last error, and
// `bytes_returned` is 0.
[[nodiscard]] bool PalReadNvParm(std::span<const BYTE> request, std::span<BYTE> answer,
                                 DWORD& bytes_returned);

#endif  // SYSINFO_NONVOLATILE_PARAMETERS_H_
