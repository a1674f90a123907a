// Threads of the host that are kept for the next one who needs a thread: making one takes longer
// than most of what is done in it.
#ifndef PLATFORM_SIM_KERNEL_HOST_THREAD_POOL_H_
#define PLATFORM_SIM_KERNEL_HOST_THREAD_POOL_H_

#include <functional>
#include <memory>

namespace sim {

// As std::jthread: its destruction waits for the end of `body`, which must not throw.
class HostThread {
 public:
  HostThread() = default;
  explicit HostThread(std::function<void()> body);
  HostThread(HostThread&&) = default;
  HostThread& operator=(HostThread&&) = default;
  // Waits until the body has ended. Does nothing where there is none, or where it was waited for.
  void Join();

 private:
  class Worker;
  class Pool;
  static std::shared_ptr<Pool> Kept();
  std::shared_ptr<Pool> pool_;  // the last thread keeps it alive, also at the host's exit
  std::shared_ptr<Worker> worker_;
};

}  // namespace sim

#endif  // PLATFORM_SIM_KERNEL_HOST_THREAD_POOL_H_
