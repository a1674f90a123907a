// The libraries that a new device has, with what their entries do.
#ifndef PLATFORM_SIM_COREDLL_LIBRARY_ENTRIES_H_
#define PLATFORM_SIM_COREDLL_LIBRARY_ENTRIES_H_

#include <vector>

#include "platform/sim/device.h"

namespace sim {

[[nodiscard]] std::vector<Module> BuiltInModules();

}  // namespace sim

#endif  // PLATFORM_SIM_COREDLL_LIBRARY_ENTRIES_H_
