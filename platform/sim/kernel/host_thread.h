// The host's threads that run as threads of the device.
#ifndef PLATFORM_SIM_KERNEL_HOST_THREAD_H_
#define PLATFORM_SIM_KERNEL_HOST_THREAD_H_

#include <functional>
#include <memory>

#include "platform/sim/kernel/process_state.h"

namespace sim {

// Starts a thread that waits for its first turn. It is one of its process's threads and has a
// strand of its own. Wants the device's lock held.
void StartHostThread(const std::shared_ptr<ThreadState>& thread, std::function<void()> body);

// Lets the device run until the thread has ended; one that waits for ever is ended with its
// process, as misuse. Only for the driver, without the lock.
void AwaitEnd(ThreadState& thread);

}  // namespace sim

#endif  // PLATFORM_SIM_KERNEL_HOST_THREAD_H_
