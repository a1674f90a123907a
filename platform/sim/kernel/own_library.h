// The library that a process was made with, as one of the modules that it has loaded.
#ifndef PLATFORM_SIM_KERNEL_OWN_LIBRARY_H_
#define PLATFORM_SIM_KERNEL_OWN_LIBRARY_H_

#include "platform/sim/kernel/process_state.h"

namespace sim {

// Runs the library's entry as the thread that calls, without the lock.
void CallEntry(ProcessState& process, std::uint32_t reason);

// What its last free does: the entry runs for the detach and the exports are gone. The copy itself
// stays mapped to the end of the process, so that a thread that still runs in it is recorded as
// misuse and does no harm to the host. Wants the lock held and gives it up meanwhile.
void UnloadOwnLibrary(Scheduler::Lock& lock, ProcessState& process);

}  // namespace sim

#endif  // PLATFORM_SIM_KERNEL_OWN_LIBRARY_H_
