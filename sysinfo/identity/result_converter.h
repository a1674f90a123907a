// From an identity source to a caller's buffer, in 8-bit text and in UTF-16.
#ifndef SYSINFO_IDENTITY_RESULT_CONVERTER_H_
#define SYSINFO_IDENTITY_RESULT_CONVERTER_H_

#include "sysinfo/identity/identity_sources.h"

namespace pal {

// `length`: in, the size of `buffer` in bytes; out, what the text with its terminator takes of it,
// or, with a null `buffer` or one that is too short, needs.
//
// S_OK        done
// PAL_SYSINFO_E_TOO_SHORT  the buffer is shorter than what the source gives; traced
// PAL_SYSINFO_E_INVALID_INPUT  `length` is null; traced
// others      the source's failure, as it is
HRESULT PalProcessResultExA(IdentitySource source, char* buffer, DWORD* length);

// The same; lengths are bytes here too, two for each character.
HRESULT PalSysIoRequestExW(IdentitySource source, WCHAR* buffer, DWORD* length);

}  // namespace pal

#endif  // SYSINFO_IDENTITY_RESULT_CONVERTER_H_
