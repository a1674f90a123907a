#include "platform/sim/kernel/kernel.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>

#include "platform/sim/coredll/library_entries.h"
#include "platform/sim/programs/registry_importer.h"
#include "platform/wince.h"

namespace sim {

Kernel::Kernel(Concurrency concurrency)
    : scheduler(concurrency == Concurrency::kParallel, driver_strand),
      modules(BuiltInModules()),
      programs{RegistryImporter()} {}

void Kernel::Log(const ThreadState* thread, Effect effect, std::string_view text,
                 std::uint32_t category) {
  if (!journal.is_read()) return;
  JournalEntry entry;
  entry.time_ms = scheduler.now_ms();
  entry.process_id = thread != nullptr ? thread->process.id : 0;
  entry.thread_id = thread != nullptr ? thread->id : 0;
  entry.effect = effect;
  entry.category = category;
  entry.text = Escape(text);  // one line, whatever names stand in it
  journal.Add(std::move(entry));
}

void Kernel::Misuse(const ThreadState& thread, std::string_view text) {
  misuse.push_back(fmt::format("{}: {}", thread.process.name, text));
}

Wake Kernel::Block(Scheduler::Lock& lock, ThreadState& thread, std::uint32_t timeout_ms) {
  const std::optional<std::uint64_t> timeout =
      timeout_ms == INFINITE ? std::nullopt : std::optional<std::uint64_t>(timeout_ms);
  thread.blocked = true;
  const Wake reason = scheduler.Wait(lock, *thread.strand, timeout);
  thread.blocked = false;
  if (thread.MustLeave()) throw ProcessKilled();
  if (reason == Wake::kDeadlock) {
    Misuse(thread, "deadlock: every thread of the device waits for ever");
  }
  return reason;
}

namespace {

// A place in the queue of an object, from construction to destruction.
class QueuedWaiter {
 public:
  QueuedWaiter(Waitable& object, ThreadState& thread) : object_(object), waiter_{&thread} {
    object_.waiters.push_back(&waiter_);
  }
  ~QueuedWaiter() { std::erase(object_.waiters, &waiter_); }
  QueuedWaiter(const QueuedWaiter&) = delete;
  QueuedWaiter& operator=(const QueuedWaiter&) = delete;
  [[nodiscard]] std::uint32_t result() const { return waiter_.result; }

 private:
  Waitable& object_;
  Waiter waiter_;
};

}  // namespace

std::uint32_t Kernel::WaitFor(Scheduler::Lock& lock, ThreadState& thread,
                              const std::shared_ptr<Waitable>& object, std::uint32_t timeout_ms) {
  const std::optional<std::uint32_t> at_once = object->TryTake(thread);
  if (at_once) return *at_once;
  if (timeout_ms == 0) return WAIT_TIMEOUT;
  const QueuedWaiter waiter(*object, thread);
  switch (Block(lock, thread, timeout_ms)) {
    case Wake::kSignal:
      return waiter.result();
    case Wake::kTimeout:
      return WAIT_TIMEOUT;
    default:
      thread.last_error = ERROR_GEN_FAILURE;
      return WAIT_FAILED;
  }
}

void Kernel::EndThread(ThreadState& thread) {
  while (!thread.owned.empty()) {
    Mutex& owned = *thread.owned.back();
    if (!owned.name().empty()) {
      Log(&thread, Effect::kMutex, fmt::format("{} abandoned", ToUtf8(owned.name())));
    }
    owned.Abandon();
    owned.ServeWaiters(scheduler);
  }
  thread.object->ended = true;
  thread.object->ServeWaiters(scheduler);
}

void Kernel::StopSound(const ThreadState& thread) {
  const auto playing = hardware.audio.sounds.find(thread.process.id);
  if (playing == hardware.audio.sounds.end()) return;
  const Sound sound = std::move(playing->second);
  hardware.audio.sounds.erase(playing);
  Log(&thread, Effect::kAudio, "sound stops " + sound.path);
  sound.stopped->set_signalled(true);
  sound.stopped->ServeWaiters(scheduler);
}

bool Kernel::HasRoomForProcess() const {
  constexpr std::ptrdiff_t kMostProcesses = 32;
  const auto is_alive = [](const auto& process) { return process != nullptr && process->alive; };
  return std::ranges::count_if(program_processes, is_alive) +
             std::ranges::count_if(processes, is_alive,
                                   [](const auto& process) { return process.lock(); }) <
         kMostProcesses;
}

void Kernel::BeginKill(ProcessState& process) {
  if (process.killed || !process.alive) return;
  process.killed = true;
  process.alive = false;
  Log(process.main_thread.get(), Effect::kProcess, process.name + " killed");
  StopSound(*process.main_thread);
  // Its heap stays: with kParallel, another thread may use it until its next platform call.
  handles.CloseAll(process.id, {});
  for (const auto& thread : process.threads) scheduler.WakeUp(*thread->strand, Wake::kKilled);
  // The main thread of a program is one of these threads. Any other main thread runs on the
  // driver's strand, which may wait for something else now.
  ThreadState& main = *process.main_thread;
  if (main.strand != &driver_strand) return;
  if (main.blocked) scheduler.WakeUp(*main.strand, Wake::kKilled);
  EndThread(main);
}

void Kernel::CloseEverything(ProcessState& process, bool is_misuse) {
  StopSound(*process.main_thread);
  for (const std::string& left : handles.CloseAll(process.id, process.cut_off)) {
    if (is_misuse) Misuse(*process.main_thread, "left open at the end: " + left);
  }
  if (is_misuse && !process.heap.empty()) {
    Misuse(*process.main_thread,
           fmt::format("{} heap blocks left at the end", process.heap.size()));
  }
  for (const auto& block : process.heap) std::free(block.first);
  process.heap.clear();
}

const Module* Kernel::FindModule(std::string_view path) const {
  const auto found = std::ranges::find_if(
      modules, [&](const Module& module) { return EqualNoCase(module.path(), path); });
  return found == modules.end() ? nullptr : &*found;
}

std::uintptr_t Kernel::ModuleHandle(std::string_view path) {
  for (const auto& [handle, known] : module_names) {
    if (known == path) return handle;
  }
  constexpr std::uintptr_t kFirst = 0x40000000;
  constexpr std::uintptr_t kStep = 0x00100000;
  const std::uintptr_t handle = kFirst + module_names.size() * kStep;
  module_names.emplace(handle, path);
  return handle;
}

}  // namespace sim
