// This library as a module that its own code can hold.
#ifndef FRAME_OWN_MODULE_H_
#define FRAME_OWN_MODULE_H_

#include "frame/unique_handle.h"
#include "platform/wince.h"

namespace pal {

// For the entry alone, which is told the handle when a process attaches.
void SetOwnModule(HMODULE module);

// This library's handle in this process.
[[nodiscard]] HMODULE OwnModule();

// Loads this library once more: it then stays in the process until what is given is freed, whatever
// others free. Empty where that fails.
[[nodiscard]] UniqueModule HoldOwnModule();

}  // namespace pal

#endif  // FRAME_OWN_MODULE_H_
