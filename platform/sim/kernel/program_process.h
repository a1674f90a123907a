// Processes that run a program, started by other processes.
#ifndef PLATFORM_SIM_KERNEL_PROGRAM_PROCESS_H_
#define PLATFORM_SIM_KERNEL_PROGRAM_PROCESS_H_

#include <memory>
#include <string>

#include "platform/sim/device.h"
#include "platform/sim/kernel/process_state.h"

namespace sim {

// A process without the library; its one thread waits for its first turn. Wants the lock held.
std::shared_ptr<ProcessState> StartProgram(Kernel& kernel, const Program& program,
                                           const std::string& command_line);

// The end of such a process, however it came about: those that wait for it go on. Wants the lock
// held.
void FinishProgram(ProcessState& process);

// Kills those that still run. For the driver, at the end of the device.
void EndPrograms(Kernel& kernel);

}  // namespace sim

#endif  // PLATFORM_SIM_KERNEL_PROGRAM_PROCESS_H_
