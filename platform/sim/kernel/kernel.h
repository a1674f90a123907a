// The whole of a simulated device behind its one lock.
#ifndef PLATFORM_SIM_KERNEL_KERNEL_H_
#define PLATFORM_SIM_KERNEL_KERNEL_H_

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "platform/sim/device.h"
#include "platform/sim/hardware/hardware.h"
#include "platform/sim/kernel/faults.h"
#include "platform/sim/kernel/handle_table.h"
#include "platform/sim/kernel/process_state.h"
#include "platform/sim/kernel/scheduler.h"
#include "platform/sim/text.h"

namespace sim {

// `mutex` guards all members. The driver needs no lock while it is in no call.
class Kernel {
 public:
  explicit Kernel(Concurrency concurrency);

  mutable std::mutex mutex;
  Strand driver_strand;
  const std::thread::id driver = std::this_thread::get_id();
  Scheduler scheduler;
  Registry registry;
  FileSystem files;
  Journal journal;
  Hardware hardware;
  Faults faults;
  HandleTable handles;
  std::vector<std::string> misuse;
  std::vector<Module> modules;
  std::string library_path{kLibraryPath};  // of the library that every process is made with
  std::map<std::uintptr_t, std::string> module_names;  // by handle
  std::vector<Program> programs;
  std::vector<Program> services;  // run from the start
  std::uint32_t next_process_id = 1;
  std::vector<std::weak_ptr<ProcessState>> processes;            // those that the driver made
  std::vector<std::shared_ptr<ProcessState>> program_processes;  // those that run a program
  std::vector<RestartKind> restarts;
  std::function<void(std::string_view bytes)> on_free;  // may be empty
  std::function<void(DriverAnswer& answer)> on_answer;  // may be empty

  // Named objects, each type with its own names.
  std::map<std::u16string, std::weak_ptr<Mutex>> mutexes;
  std::map<std::u16string, std::weak_ptr<Event>> events;

  // Notes an effect of a thread (nullptr: of the device itself) at the present time.
  void Log(const ThreadState* thread, Effect effect, std::string_view text,
           std::uint32_t category = 0);
  void Misuse(const ThreadState& thread, std::string_view text);

  // Lets other threads run until this one is woken, or until the time has passed. Throws
  // ProcessKilled where the process ended meanwhile. A deadlock is recorded as misuse.
  Wake Block(Scheduler::Lock& lock, ThreadState& thread, std::uint32_t timeout_ms);
  // Waits as the platform does. Throws ProcessKilled where the process ended meanwhile.
  std::uint32_t WaitFor(Scheduler::Lock& lock, ThreadState& thread,
                        const std::shared_ptr<Waitable>& object, std::uint32_t timeout_ms);
  // The end of a thread: its mutexes are abandoned, those that wait for it go on.
  void EndThread(ThreadState& thread);
  // Stops the sound that the thread's process plays.
  void StopSound(const ThreadState& thread);
  // Whether one more process may start.
  [[nodiscard]] bool HasRoomForProcess() const;
  // Marks a process as killed, closes its handles and wakes its threads: each one ends where it
  // waits.
  void BeginKill(ProcessState& process);
  // Restarts the device at the request of a thread (nullptr: from outside). That thread must end
  // then, as all others do.
  void Restart(const ThreadState* thread, RestartKind kind);

  [[nodiscard]] const Module* FindModule(std::string_view path) const;
  // The handle of a library by its path: the same in every process.
  std::uintptr_t ModuleHandle(std::string_view path);
  // At the end of a process: stops its sound, closes its handles and frees its heap. What was still
  // open is recorded where that is misuse.
  void CloseEverything(ProcessState& process, bool is_misuse);
};

// The library that the simulator was built with.
[[nodiscard]] std::filesystem::path DefaultLibrary();

}  // namespace sim

#endif  // PLATFORM_SIM_KERNEL_KERNEL_H_
