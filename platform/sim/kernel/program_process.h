// Processes that run a program, started by other processes.
#ifndef PLATFORM_SIM_KERNEL_PROGRAM_PROCESS_H_
#define PLATFORM_SIM_KERNEL_PROGRAM_PROCESS_H_

#include <memory>
#include <string>

#include "platform/sim/device.h"
#include "platform/sim/kernel/process_state.h"

namespace sim {

// Makes a process without the library. Its only thread waits for its first turn. The caller must
// hold the lock.
std::shared_ptr<ProcessState> StartProgram(Kernel& kernel, const Program& program,
                                           const std::string& command_line);

// Called at the end of such a process, also when it was killed: threads that wait for it go on. The
// caller must hold the lock.
void FinishProgram(ProcessState& process);

// Kills the programs that still run. The driver calls this at the end of the device.
void EndPrograms(Kernel& kernel);

}  // namespace sim

#endif  // PLATFORM_SIM_KERNEL_PROGRAM_PROCESS_H_
