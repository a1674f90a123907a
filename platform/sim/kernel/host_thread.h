// The host's threads that run as threads of the device.
#ifndef PLATFORM_SIM_KERNEL_HOST_THREAD_H_
#define PLATFORM_SIM_KERNEL_HOST_THREAD_H_

#include <functional>
#include <memory>

#include "platform/sim/kernel/process_state.h"

namespace sim {

// Starts the host's thread of one of a process's threads, which has a strand of its own. It waits
// for its first turn. The caller must hold the device's lock.
void StartHostThread(const std::shared_ptr<ThreadState>& thread, std::function<void()> body);

// Lets the device run until the thread has ended. A thread that waits for ever is ended with its
// process, and that is misuse. Only the driver may call this, without the lock.
void AwaitEnd(ThreadState& thread);

}  // namespace sim

#endif  // PLATFORM_SIM_KERNEL_HOST_THREAD_H_
