// The simulated device of which this process has the hardware, and for which Windows does the rest.
#ifndef PLATFORM_WIN32_MACHINE_H_
#define PLATFORM_WIN32_MACHINE_H_

#include "platform/sim/device.h"
#include "platform/sim/kernel/kernel.h"

namespace win32 {

class Machine {
 public:
  Machine();
  [[nodiscard]] sim::Device& device() { return device_; }
  // Of all threads of this process: the device's hardware does not tell them apart.
  [[nodiscard]] sim::ThreadState& thread() { return thread_; }

 private:
  sim::Device device_;
  sim::ProcessState process_;
  sim::ThreadState thread_;
};

[[nodiscard]] Machine& TheMachine();

}  // namespace win32

#endif  // PLATFORM_WIN32_MACHINE_H_
