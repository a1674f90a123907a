#include "platform/sim/kernel/host_thread.h"

#include <fmt/format.h>

#include "platform/sim/kernel/kernel.h"
#include "platform/sim/kernel/program_process.h"

namespace sim {
namespace {

void ThreadBody(const std::shared_ptr<ThreadState>& thread, const std::function<void()>& body) {
  Kernel& kernel = thread->process.kernel;
  ThreadScope scope(thread.get());
  bool leaves = false;
  {
    Scheduler::Lock lock(kernel.mutex);
    kernel.scheduler.AwaitTurn(lock, *thread->strand);
    leaves = thread->MustLeave();
  }
  try {
    if (leaves) throw ProcessKilled();
    body();
  } catch (const ThreadExit&) {
  } catch (const ProcessKilled&) {
    thread->killed = true;
  } catch (...) {
    thread->failure = std::current_exception();
  }
  const Scheduler::Lock lock(kernel.mutex);
  kernel.EndThread(*thread);
  if (thread == thread->process.main_thread) FinishProgram(thread->process);
  kernel.scheduler.End(*thread->strand);
}

// Lets the other threads run until a thread has ended. False where no thread can run any more.
bool AwaitThread(ThreadState& thread) {
  Kernel& kernel = thread.process.kernel;
  Scheduler::Lock lock(kernel.mutex);
  if (thread.object->ended) return true;
  ThreadState driver(thread.process, 0, kernel.driver_strand);
  Waiter waiter{.thread = &driver, .is_driver = true};
  thread.object->waiters.push_back(&waiter);
  const Wake reason = kernel.scheduler.Wait(lock, kernel.driver_strand, std::nullopt);
  std::erase(thread.object->waiters, &waiter);
  return reason != Wake::kDeadlock;
}

}  // namespace

void StartHostThread(const std::shared_ptr<ThreadState>& thread, std::function<void()> body) {
  thread->process.kernel.scheduler.Add(*thread->strand);
  thread->host = HostThread([thread, body = std::move(body)] { ThreadBody(thread, body); });
}

void AwaitEnd(ThreadState& thread) {
  Kernel& kernel = thread.process.kernel;
  while (!AwaitThread(thread)) {
    const Scheduler::Lock lock(kernel.mutex);
    kernel.Misuse(thread, fmt::format("deadlock: thread {} waits for ever", thread.id));
    kernel.BeginKill(thread.process);
  }
  thread.host.Join();
}

}  // namespace sim
