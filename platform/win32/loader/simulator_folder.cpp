#include "platform/sim/kernel/simulator_folder.h"

#include <windows.h>

#include <array>
#include <stdexcept>

namespace sim {

std::filesystem::path SimulatorFolder() {
  HMODULE module = nullptr;
  std::array<wchar_t, 1024> path{};
  constexpr DWORD kUncounted =
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  if (GetModuleHandleExW(kUncounted, reinterpret_cast<const wchar_t*>(&SimulatorFolder), &module) ==
          0 ||
      GetModuleFileNameW(module, path.data(), path.size()) == 0) {
    throw std::runtime_error("cannot tell where the simulator's library lies");
  }
  return std::filesystem::path(path.data()).parent_path();
}

}  // namespace sim
