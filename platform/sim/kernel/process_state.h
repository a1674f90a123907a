// A process and its threads, as the kernel keeps them.
#ifndef PLATFORM_SIM_KERNEL_PROCESS_STATE_H_
#define PLATFORM_SIM_KERNEL_PROCESS_STATE_H_

#include <atomic>
#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/sim/exports.h"
#include "platform/sim/kernel/host_thread_pool.h"
#include "platform/sim/kernel/library_copy.h"
#include "platform/sim/kernel/objects.h"
#include "platform/sim/kernel/scheduler.h"

namespace sim {

class Kernel;
class ProcessState;

// Thrown by a platform call that ends the thread. The thread ends as if its function had returned.
struct ThreadExit {};

class ThreadState {
 public:
  ThreadState(ProcessState& of, std::uint32_t number, Strand& runs_on)
      : process(of), id(number), strand(&runs_on) {}

  // Whether it must stop: its process was killed, or ends and this is not the main thread.
  [[nodiscard]] bool MustLeave() const;
  // Whether it runs in the library's code, or will return there.
  [[nodiscard]] bool RunsInLibrary() const {
    return calls_in_library > 0 && !left_library && !object->ended;
  }

  ProcessState& process;
  const std::uint32_t id;
  Strand* strand;  // its own, or the driver's
  std::uint32_t last_error = 0;
  bool blocked = false;  // it waits in a platform call
  std::vector<Mutex*> owned;
  std::atomic<unsigned> calls_in_library = 0;  // those that have not returned
  bool left_library = false;                   // it will never return there
  std::vector<std::uint32_t> errors;  // that the platform gave to its last call of an export
  const std::shared_ptr<ThreadObject> object = std::make_shared<ThreadObject>();

  // Only for a thread that has a thread of the host:
  Strand own_strand;
  HostThread host;
  std::exception_ptr failure;
  bool killed = false;
};

class ProcessState {
 public:
  // `program`: the path of its file, or only its name.
  ProcessState(Kernel& of, std::uint32_t number, std::string_view program);

  // Adds a thread, which the caller must start. The caller must hold the lock.
  [[nodiscard]] std::shared_ptr<ThreadState> AddThread();

  Kernel& kernel;
  const std::uint32_t id;
  const std::string path;
  const std::string name;
  const std::string library_path;  // of the library under test
  bool alive = true;               // false once it ends: no new call may begin
  bool exiting = false;            // all but its main thread leave at their next platform call
  bool killed = false;             // all of them do
  std::unique_ptr<LibraryCopy> library;
  Exports exports;
  std::shared_ptr<ThreadState> main_thread;
  // All threads that have a thread of the host: the driver has none.
  std::vector<std::shared_ptr<ThreadState>> threads;
  // Threads that were stopped by the end of the process. Their open handles are no misuse.
  std::vector<std::uint32_t> cut_off;
  // The loaded libraries by path, with the number of loads.
  std::map<std::string, unsigned, std::less<>> modules;
  unsigned handles_at_start = 0;  // those that the library opened when it attached
  std::unordered_map<void*, std::size_t> heap;
  // Only for a process that a program runs in:
  const std::shared_ptr<ProcessObject> object = std::make_shared<ProcessObject>();
  std::uint32_t exit_code = 0;
};

// The thread of the device for which the calling thread of the host runs now, or nullptr.
[[nodiscard]] ThreadState* CurrentThread();

// Lets the host's thread run as a thread of the device, from construction to destruction.
class ThreadScope {
 public:
  explicit ThreadScope(ThreadState* thread);
  ~ThreadScope();
  ThreadScope(const ThreadScope&) = delete;
  ThreadScope& operator=(const ThreadScope&) = delete;

 private:
  ThreadState* previous_;
};

}  // namespace sim

#endif  // PLATFORM_SIM_KERNEL_PROCESS_STATE_H_
