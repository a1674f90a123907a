// Looking up what the provider library does for this one.
#ifndef FRAME_FORWARDED_SERVICES_H_
#define FRAME_FORWARDED_SERVICES_H_

#include "platform/wince.h"

namespace pal {

// Gives the provider's export of this name. Loads the provider where the process has none yet:
// "DVLORQPAL.dll" by its name, or else from the folder of the process's program; this library
// itself is no provider. Each load, and what is missing, is traced.
//
// S_OK       `address` is the export's
// E_NOTIMPL  there is no provider, or it has no such export; `address` is unchanged
[[nodiscard]] HRESULT PalLoadProviderFunction(const char* name, FARPROC& address);

}  // namespace pal

#endif  // FRAME_FORWARDED_SERVICES_H_
