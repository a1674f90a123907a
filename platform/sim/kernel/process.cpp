// The processes and threads that the driver of a device makes and ends.
#include <fmt/format.h>

#include <stdexcept>

#include "platform/sim/device.h"
#include "platform/sim/kernel/host_thread.h"
#include "platform/sim/kernel/kernel.h"
#include "platform/sim/kernel/own_library.h"
#include "platform/wince.h"

namespace sim {
namespace {

void LogProcess(ProcessState& process, std::string_view what) {
  const Scheduler::Lock lock(process.kernel.mutex);
  process.kernel.Log(process.main_thread.get(), Effect::kProcess,
                     fmt::format("{} {}", process.name, what));
}

void BindExports(ProcessState& process) {
#define PAL_EXPORT(name) \
  process.exports.name = Export<decltype(::name)>(process, process.library->Symbol(#name), #name);
#include "exports.inc"
#undef PAL_EXPORT
}

void RequireDriver(const Kernel& kernel) {
  if (std::this_thread::get_id() != kernel.driver) {
    throw std::logic_error("only the thread that made the device may do this");
  }
}

// When a process ends, its other threads end too, whatever they do.
void EndThreads(ProcessState& process) {
  Kernel& kernel = process.kernel;
  {
    const Scheduler::Lock lock(kernel.mutex);
    process.exiting = true;
    for (const auto& thread : process.threads) {
      kernel.scheduler.WakeUp(*thread->strand, Wake::kKilled);
    }
  }
  for (const auto& thread : process.threads) {
    AwaitEnd(*thread);
    if (thread->killed) process.cut_off.push_back(thread->id);
  }
  process.threads.clear();
}

// A call into the library, from construction to destruction.
class LibraryCall {
 public:
  explicit LibraryCall(ThreadState& thread) : thread_(thread) {
    if (thread_.calls_in_library++ == 0) thread_.errors.clear();
  }
  ~LibraryCall() { --thread_.calls_in_library; }
  LibraryCall(const LibraryCall&) = delete;
  LibraryCall& operator=(const LibraryCall&) = delete;

 private:
  ThreadState& thread_;
};

// Whether the library is still loaded: the process may have freed it.
bool HasLibrary(ProcessState& process) {
  const Scheduler::Lock lock(process.kernel.mutex);
  return process.alive && process.modules.contains(process.library_path);
}

}  // namespace

void RunInProcess(ProcessState& process, const std::function<void()>& body) {
  const ThreadState* current = CurrentThread();
  if (current != nullptr && &current->process == &process) return body();
  RequireDriver(process.kernel);
  {
    const Scheduler::Lock lock(process.kernel.mutex);
    if (!process.alive) throw std::logic_error(process.name + " has ended");
  }
  ThreadScope scope(process.main_thread.get());
  body();
}

void RunInLibrary(ProcessState& process, const std::function<void()>& body) {
  RunInProcess(process, [&] {
    const LibraryCall call(*CurrentThread());
    body();
  });
}

bool Thread::Join() {
  RequireDriver(state_->process.kernel);
  AwaitEnd(*state_);
  if (state_->failure) std::rethrow_exception(std::exchange(state_->failure, nullptr));
  return !state_->killed;
}

bool Thread::ended() const {
  const Scheduler::Lock lock(state_->process.kernel.mutex);
  return state_->object->ended;
}

Process::Process(Device& device, const std::string& name, std::filesystem::path library)
    : device_(device) {
  Kernel& kernel = device_.kernel();
  RequireDriver(kernel);
  {
    const Scheduler::Lock lock(kernel.mutex);
    if (!kernel.HasRoomForProcess()) throw std::logic_error("the device has 32 processes already");
    state_ = std::make_shared<ProcessState>(kernel, kernel.next_process_id++, name);
    state_->main_thread = std::make_shared<ThreadState>(*state_, 1, kernel.driver_strand);
    std::erase_if(kernel.processes, [](const auto& process) { return process.expired(); });
    kernel.processes.push_back(state_);
    kernel.Log(state_->main_thread.get(), Effect::kProcess, state_->name + " started");
    state_->modules.emplace(state_->library_path, 1);
  }
  if (library.empty()) library = DefaultLibrary();
  state_->library = std::make_unique<LibraryCopy>(library);
  BindExports(*state_);
  try {
    CallEntry(*state_, DLL_PROCESS_ATTACH);
  } catch (...) {
    End();
    throw;
  }
  LogProcess(*state_, "attached");
  const Scheduler::Lock lock(kernel.mutex);
  state_->handles_at_start = kernel.handles.Count(state_->id);
}

Process::~Process() {
  try {
    End();
  } catch (const std::exception& error) {
    const Scheduler::Lock lock(state_->kernel.mutex);
    state_->kernel.Misuse(*state_->main_thread, error.what());
  }
}

std::uint32_t Process::id() const {
  return state_->id;
}

const std::string& Process::name() const {
  return state_->name;
}

bool Process::alive() const {
  const Scheduler::Lock lock(state_->kernel.mutex);
  return state_->alive;
}

const Exports& Process::exports() const {
  return state_->exports;
}

void* Process::Symbol(const char* name) const {
  return state_->library->Symbol(name);
}

void Process::Run(const std::function<void()>& body) {
  RunInProcess(*state_, body);
}

Thread Process::Start(std::function<void()> body) {
  Kernel& kernel = state_->kernel;
  RequireDriver(kernel);
  if (!alive()) throw std::logic_error(name() + " has ended");
  const Scheduler::Lock lock(kernel.mutex);
  auto thread = state_->AddThread();
  StartHostThread(thread, std::move(body));
  return {thread, state_};
}

void Process::Note(Effect effect, std::string_view text) const {
  const ThreadState* current = CurrentThread();
  const bool is_own = current != nullptr && &current->process == state_.get();
  const Scheduler::Lock lock(state_->kernel.mutex);
  state_->kernel.Log(is_own ? current : state_->main_thread.get(), effect, text);
}

void Process::End() {
  if (state_->library == nullptr) return;
  RequireDriver(state_->kernel);
  EndThreads(*state_);
  if (HasLibrary(*state_)) {
    LogProcess(*state_, "detaches");
    CallEntry(*state_, DLL_PROCESS_DETACH);
  }
  {
    const Scheduler::Lock lock(state_->kernel.mutex);
    state_->kernel.CloseEverything(*state_, state_->alive);
    if (state_->alive) {
      state_->alive = false;
      state_->kernel.EndThread(*state_->main_thread);
      state_->kernel.Log(state_->main_thread.get(), Effect::kProcess, state_->name + " ended");
    }
  }
  state_->exports = Exports{};
  state_->library.reset();
}

void Process::Kill() {
  if (state_->library == nullptr) return;
  RequireDriver(state_->kernel);
  {
    const Scheduler::Lock lock(state_->kernel.mutex);
    state_->kernel.BeginKill(*state_);
  }
  End();
}

unsigned Process::open_handles() const {
  const Scheduler::Lock lock(state_->kernel.mutex);
  return state_->kernel.handles.Count(state_->id);
}

unsigned Process::new_handles() const {
  return open_handles() - state_->handles_at_start;
}

unsigned Process::held_mutexes() const {
  const Scheduler::Lock lock(state_->kernel.mutex);
  std::size_t held = state_->main_thread->owned.size();
  for (const auto& thread : state_->threads) held += thread->owned.size();
  return static_cast<unsigned>(held);
}

const std::vector<std::uint32_t>& Process::errors_of_call() const {
  const ThreadState* current = CurrentThread();
  const bool is_own = current != nullptr && &current->process == state_.get();
  return is_own ? current->errors : state_->main_thread->errors;
}

unsigned Process::heap_blocks() const {
  const Scheduler::Lock lock(state_->kernel.mutex);
  return static_cast<unsigned>(state_->heap.size());
}

}  // namespace sim
