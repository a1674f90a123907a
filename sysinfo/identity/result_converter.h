// From an identity source to a caller's buffer, in 8-bit text and in UTF-16.
#ifndef SYSINFO_IDENTITY_RESULT_CONVERTER_H_
#define SYSINFO_IDENTITY_RESULT_CONVERTER_H_

#include "sysinfo/identity/identity_sources.h"

namespace pal {

// Both have the results of the exports over them, and trace those that are not the source's own.
// `length`: in, the size of `buffer` in bytes; out, what the text with its terminator takes of it,
// or, with a null `buffer` or one that is too short, needs.
HRESULT PalProcessResultExA(IdentitySource source, char* buffer, DWORD* length);
HRESULT PalSysIoRequestExW(IdentitySource source, WCHAR* buffer, DWORD* length);

}  // namespace pal

#endif  // SYSINFO_IDENTITY_RESULT_CONVERTER_H_
