// What FreeLibrary and FreeLibraryAndExitThread have in common.
#ifndef PLATFORM_SIM_COREDLL_FREE_LIBRARY_H_
#define PLATFORM_SIM_COREDLL_FREE_LIBRARY_H_

#include "platform/sim/coredll/call.h"

namespace sim {

// Frees a library that was loaded once; the last free unloads it.
BOOL FreeLoaded(Call& call, HMODULE module);

}  // namespace sim

#endif  // PLATFORM_SIM_COREDLL_FREE_LIBRARY_H_
