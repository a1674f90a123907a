// Where the imports of an image lead on the simulated device.
#ifndef PLATFORM_DEVICE_LOADER_IMPORTS_H_
#define PLATFORM_DEVICE_LOADER_IMPORTS_H_

#include <string>

namespace sim {

// `name`: the function's, or "#2" for its ordinal. nullptr where the simulated device lacks it.
[[nodiscard]] void* FindImport(const std::string& library, const std::string& name);

}  // namespace sim

#endif  // PLATFORM_DEVICE_LOADER_IMPORTS_H_
