// This library as a module that its own code can hold.
#ifndef FRAME_OWN_MODULE_H_
#define FRAME_OWN_MODULE_H_

#include "frame/unique_handle.h"
#include "platform/wince.h"

namespace pal {

// Called by the entry only, which gets the handle when a process attaches.
void SetOwnModule(HMODULE module);

// This library's handle in this process.
[[nodiscard]] HMODULE OwnModule();

// Loads this library once more: it then stays in the process at least until the owner is freed.
// Empty where that fails.
[[nodiscard]] UniqueModule HoldOwnModule();

}  // namespace pal

#endif  // FRAME_OWN_MODULE_H_
