// Where the simulator itself lies on the host.
#ifndef PLATFORM_SIM_KERNEL_SIMULATOR_FOLDER_H_
#define PLATFORM_SIM_KERNEL_SIMULATOR_FOLDER_H_

#include <filesystem>

namespace sim {

// The folder of the simulator's own library.
[[nodiscard]] std::filesystem::path SimulatorFolder();

}  // namespace sim

#endif  // PLATFORM_SIM_KERNEL_SIMULATOR_FOLDER_H_
