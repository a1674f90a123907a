#include "platform/sim/kernel/simulator_folder.h"

#include <dlfcn.h>

#include <stdexcept>

namespace sim {

std::filesystem::path SimulatorFolder() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&SimulatorFolder), &info) == 0) {
    throw std::runtime_error("cannot tell where the simulator's library lies");
  }
  return std::filesystem::path(info.dli_fname).parent_path();
}

}  // namespace sim
