#include "platform/sim/kernel/program_process.h"

#include <fmt/format.h>

#include "platform/sim/kernel/host_thread.h"
#include "platform/sim/kernel/kernel.h"

namespace sim {
namespace {

// Removes the processes that have ended. Their threads no longer need the lock.
void Reap(Kernel& kernel) {
  std::erase_if(kernel.program_processes, [](const std::shared_ptr<ProcessState>& process) {
    if (process->main_thread->strand->state != Strand::State::kEnded) return false;
    process->main_thread->host.Join();
    return true;
  });
}

// A program of a test may throw anything. The program then ends, and the exception is misuse.
void ReportFailure(ProcessState& process) {
  const std::exception_ptr failure = std::exchange(process.main_thread->failure, nullptr);
  if (failure == nullptr) return;
  try {
    std::rethrow_exception(failure);
  } catch (const std::exception& error) {
    process.kernel.Misuse(*process.main_thread, fmt::format("threw: {}", error.what()));
  } catch (...) {
    process.kernel.Misuse(*process.main_thread, "threw");
  }
}

}  // namespace

std::shared_ptr<ProcessState> StartProgram(Kernel& kernel, const Program& program,
                                           const std::string& command_line) {
  Reap(kernel);
  auto process = std::make_shared<ProcessState>(kernel, kernel.next_process_id++, program.path);
  auto thread = std::make_shared<ThreadState>(*process, 1, kernel.driver_strand);
  thread->strand = &thread->own_strand;
  process->main_thread = thread;
  process->threads.push_back(thread);
  kernel.program_processes.push_back(process);
  kernel.Log(
      thread.get(), Effect::kProcess,
      fmt::format("{} started{}{}", process->name, command_line.empty() ? "" : ": ", command_line));
  StartHostThread(thread, [state = process.get(), run = program.run, command_line] {
    const std::uint32_t exit_code = run(command_line);
    const Scheduler::Lock lock(state->kernel.mutex);
    state->exit_code = exit_code;
  });
  return process;
}

void FinishProgram(ProcessState& process) {
  Kernel& kernel = process.kernel;
  ReportFailure(process);
  kernel.CloseEverything(process, process.alive);
  if (process.alive) {
    process.alive = false;
    kernel.Log(process.main_thread.get(), Effect::kProcess,
               fmt::format("{} ended with {}", process.name, process.exit_code));
  }
  process.object->ended = true;
  process.object->ServeWaiters(kernel.scheduler);
}

void EndPrograms(Kernel& kernel) {
  {
    const Scheduler::Lock lock(kernel.mutex);
    for (const auto& process : kernel.program_processes) {
      if (process->alive) kernel.BeginKill(*process);
    }
  }
  for (const auto& process : kernel.program_processes) AwaitEnd(*process->main_thread);
  kernel.program_processes.clear();
}

}  // namespace sim
