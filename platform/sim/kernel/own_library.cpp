#include "platform/sim/kernel/own_library.h"

#include <fmt/format.h>

#include <stdexcept>

#include "platform/sim/kernel/kernel.h"
#include "platform/wince.h"

namespace sim {

void CallEntry(ProcessState& process, std::uint32_t reason) {
  using EntryPoint = BOOL (*)(HANDLE module, DWORD reason, void* reserved);
  const auto entry = reinterpret_cast<EntryPoint>(process.library->Symbol("DllMain"));
  if (entry == nullptr) throw std::runtime_error("the library has no entry point");
  std::uintptr_t module = 0;
  {
    const Scheduler::Lock lock(process.kernel.mutex);
    module = process.kernel.ModuleHandle(process.library_path);
  }
  RunInProcess(process, [&] { entry(reinterpret_cast<HANDLE>(module), reason, nullptr); });
}

void UnloadOwnLibrary(Scheduler::Lock& lock, ProcessState& process) {
  for (const auto& thread : process.threads) {
    if (!thread->RunsInLibrary()) continue;
    process.kernel.Misuse(
        *thread, fmt::format("the library is unloaded while thread {} runs in it", thread->id));
  }
  lock.unlock();
  CallEntry(process, DLL_PROCESS_DETACH);
  lock.lock();
  process.exports = Exports{};
}

}  // namespace sim
