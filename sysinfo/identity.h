// Which device this is.
#ifndef SYSINFO_IDENTITY_H_
#define SYSINFO_IDENTITY_H_

#include "platform/wince.h"

// The model name, as the device's non-volatile parameter 0x00D5 has it. `length`: in, the size of
// `buffer` in bytes; out, the length of the name with its terminator.
//
// S_OK    read
// E_FAIL  a null argument, a parameter that cannot be read or is empty, or a buffer that is too
//         short; traced, and nothing was written
[[nodiscard]] HRESULT PalGetModel(char* buffer, DWORD* length);

#endif  // SYSINFO_IDENTITY_H_
