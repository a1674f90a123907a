// The library under test, as one of the libraries that a process has loaded.
#ifndef PLATFORM_SIM_KERNEL_OWN_LIBRARY_H_
#define PLATFORM_SIM_KERNEL_OWN_LIBRARY_H_

#include "platform/sim/kernel/process_state.h"

namespace sim {

// Runs the library's entry point as the calling thread. The caller must not hold the lock.
void CallEntry(ProcessState& process, std::uint32_t reason);

// The last free of the library: its entry point runs for the detach, and the exports are gone. The
// copy itself stays mapped until the process ends: a thread that still runs in it is recorded as
// misuse but does not crash the host. The caller must hold the lock, which is released meanwhile.
void UnloadOwnLibrary(Scheduler::Lock& lock, ProcessState& process);

}  // namespace sim

#endif  // PLATFORM_SIM_KERNEL_OWN_LIBRARY_H_
