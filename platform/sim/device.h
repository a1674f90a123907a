// The simulated device, as tests and tools steer it.
//
//   sim::Device device;
//   device.files().Write("\\ConfigStore\\dcecfg", bytes);
//   sim::Process process(device, "settings.exe");          // loads its own copy of the library
//   HRESULT result = process.exports().PALMFGOpt_ConfigStoreRegUpdate();
//   device.journal().Texts(sim::Effect::kRegistry);
//
// Time is a discrete-event clock: it moves only when every thread of the device waits, and then
// jumps to the next deadline. Of the device's threads one runs at a time, and another's turn comes
// only when it waits, so that a run always gives the same order; Concurrency::kParallel lets them
// run at once.
//
// The thread that makes a device drives it: it alone may make processes and threads and call into
// them, and what it does between calls takes no time on the device.
// What belongs to the device (registry, files, journal, misuse) it may look at whenever no other
// thread runs: with kParallel, after Join.
#ifndef PLATFORM_SIM_DEVICE_H_
#define PLATFORM_SIM_DEVICE_H_

#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sim/journal.h"
#include "platform/sim/kernel/file_system.h"
#include "platform/sim/kernel/registry.h"

namespace sim {

class Kernel;
class ProcessState;
class ThreadState;
struct Exports;
struct Hardware;

enum class Concurrency : std::uint8_t {
  kOneAtATime,  // deterministic
  kParallel,    // the host's scheduler decides; for the race detector
};

// A platform call that is made to fail. Calls are counted from the moment the fault is planned;
// where it has a subject, those with this subject alone.
// What closes or releases something does so nevertheless: nothing else could let go of it then. A
// wait that fails with 258 is one that has timed out.
struct Fault {
  std::string call{};  // a name such as "RegSetValueExW"; empty: any call
  // The end of what the call is about: a registry key or value ("Beeper\\CurrentVol"), a file, a
  // driver's code ("set power"), an event, an entry of a module, a volume or gain. Empty: anything.
  std::string on{};
  unsigned nth = 1;           // the first one to fail
  bool from_then_on = false;  // and all that follow it
  std::uint32_t error = 31;   // ERROR_GEN_FAILURE
  bool kill = false;  // instead of failing, the calling process ends there without detaching
  // Instead of failing, ReadFile and WriteFile move at most so many bytes.
  std::optional<std::uint32_t> transfers{};
};

enum class RestartKind : std::uint8_t { kWarm, kCold };

// "restart, warm", as it stands in the journal.
[[nodiscard]] const char* RestartText(RestartKind kind);

// Thrown out of an export whose process was ended under it.
class ProcessKilled : public std::exception {
 public:
  [[nodiscard]] const char* what() const noexcept override { return "the process was killed"; }
};

// What a driver or the kernel answers to one call, before the caller gets it: whoever watches the
// answers may change it, and so lie as a driver might. It cannot be written past the caller's room.
struct DriverAnswer {
  std::string_view call;          // "DeviceIoControl"
  std::span<std::uint8_t> bytes;  // the caller's room, as far as the answer may fill it
  std::uint32_t returned = 0;     // how many of them the caller is told, where the call tells it
  std::uint32_t error = 0;        // not 0: with which the call fails
};

// A library that processes can load, by its file name. Its entries are found by name; an entry
// without an address is one that the library does not have.
struct Module {
  std::string name;
  std::map<std::string, int (*)(), std::less<>> entries;
  std::string folder = "\\Windows";
  [[nodiscard]] std::string path() const { return folder + "\\" + name; }
};

// A program that processes can start. It also needs a file: without one at its path it is missing.
struct Program {
  std::string path;  // "\\Windows\\orqautoreg.exe"
  // What it does, as the only thread of a process of its own, in which it makes the platform's
  // calls. It gets its command line and gives its exit code.
  std::function<std::uint32_t(const std::string& command_line)> run;
};

class Device {
 public:
  explicit Device(Concurrency concurrency = Concurrency::kOneAtATime);
  ~Device();
  Device(const Device&) = delete;
  Device& operator=(const Device&) = delete;

  [[nodiscard]] Registry& registry();
  [[nodiscard]] FileSystem& files();
  [[nodiscard]] Journal& journal();
  [[nodiscard]] Hardware& hardware();  // platform/sim/hardware/hardware.h

  // Time since the device started.
  [[nodiscard]] std::uint64_t now_ms() const;
  void set_now_ms(std::uint64_t now);  // before the first process starts
  // Lets the device run for a while, or until every thread that the device started has ended: never
  // where one sleeps again and again.
  void Advance(std::uint32_t ms);
  void RunUntilIdle();
  // Called at each jump of the clock, with its length: to run in step with the wall clock.
  void set_on_clock(std::function<void(std::uint64_t ms)> on_clock);
  // Hands the turn over at platform calls too, in an order that follows from the seed alone.
  void ShuffleTurns(std::uint32_t seed);

  // What comes from outside of every process. A note stands in the journal as the device's own.
  void Note(Effect effect, std::string text);
  // Sets a named event; false where no process has one of this name.
  bool SetEvent(std::string_view name);

  // Takes over what another device stores and is made of: registry, files, hardware, modules and
  // programs. Not what runs there, nor its time and journal. No process has anything open on
  // either.
  void CopyFrom(const Device& other);

  // Faults. A plan stays until it is cleared.
  void PlanFault(Fault fault);
  void ClearFaults();
  // The calls that the plans have made fail, in their order, since they were cleared last.
  [[nodiscard]] std::vector<std::string> faulted_calls() const;
  // Called with each answer of a driver, of the kernel's I/O controls, of the network, the display
  // and the radio, with each file's size, and with each registry value that fits the caller's room.
  void set_on_answer(std::function<void(DriverAnswer& answer)> on_answer);
  // Platform calls since the device started: of one name, or of all.
  [[nodiscard]] unsigned calls(std::string_view name) const;
  [[nodiscard]] unsigned calls() const;

  // What was done wrong: handles used after their close or by a process they do not belong to,
  // double closes, calls that nothing simulates, buffers without an address, handles and heap
  // blocks left at a process end, a library unloaded under a thread that runs in it. A write past a
  // buffer's end is for the address sanitizer to see.
  [[nodiscard]] const std::vector<std::string>& misuse() const;
  [[nodiscard]] std::vector<std::string> TakeMisuse();

  // Called with the bytes of each heap block that a library frees, just before it is gone.
  void set_on_free(std::function<void(std::string_view bytes)> on_free);

  // Libraries that LoadLibraryW finds: by name those in \Windows, by path those of any folder. A
  // new device has "coredll.dll", with its entry "AudioUpdateFromRegistry", "DVLEventLog.dll",
  // which puts its lines into the journal, and "DVLORQPAL.dll", which does the services that the
  // library of the same name passes on to it. That library itself lies in
  // "\Program Files\Dravonel"; a process has it loaded, so that where \Windows has none of that
  // name, loading by name gives it once more.
  void InstallModule(Module module);         // in place of one with the same path
  void RemoveModule(std::string_view name);  // in whatever folder
  [[nodiscard]] std::vector<Module> modules() const;

  // Adds a program, in place of one with the same path. A new device has the registry importer,
  // "\Windows\orqautoreg.exe" (platform/sim/programs/registry_importer.h). Programs that still run
  // when the device ends are killed.
  void InstallProgram(Program program);
  // Starts a program now, whether it is installed or not: a service that runs from the start, and
  // again after each restart. Its first turn has come when this returns.
  void StartProgram(const Program& program);

  // The restarts that programs asked for, since the device was made. A restart kills every process
  // where it is: a call into one throws ProcessKilled, and its Process can only be ended. Handles
  // are closed, named objects are gone, drivers are as after power-up, and programs that run from
  // the start are started anew. Registry, files, journal and time go on, of either kind of restart.
  [[nodiscard]] std::vector<RestartKind> restarts() const;

  [[nodiscard]] Kernel& kernel() { return *kernel_; }

 private:
  std::unique_ptr<Kernel> kernel_;
};

// A thread that the driver started in a process.
class Thread {
 public:
  Thread(std::shared_ptr<ThreadState> state, std::shared_ptr<ProcessState> process)
      : state_(std::move(state)), process_(std::move(process)) {}
  // Lets the device run until the thread has ended. False if it was killed.
  bool Join();
  [[nodiscard]] bool ended() const;

 private:
  std::shared_ptr<ThreadState> state_;
  std::shared_ptr<ProcessState> process_;  // which the thread's state refers to
};

// A process with the library loaded: attached when made, detached at its end, or when the process
// has freed it.
class Process {
 public:
  // `name` is that of the program's file, in "\Program Files", or its path.
  // `library` is a build of the library; empty: the one that was built with the simulator.
  explicit Process(Device& device, const std::string& name = "caller.exe",
                   std::filesystem::path library = {});
  ~Process();  // End(), if it has not ended
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  [[nodiscard]] std::uint32_t id() const;
  [[nodiscard]] const std::string& name() const;
  [[nodiscard]] bool alive() const;
  [[nodiscard]] Device& device() const { return device_; }

  // The exported functions; each call runs as the main thread of this process.
  [[nodiscard]] const Exports& exports() const;
  // Any symbol of the process's copy of the library, or nullptr.
  [[nodiscard]] void* Symbol(const char* name) const;
  // Runs something as the main thread of this process: the platform's calls may be made in it.
  void Run(const std::function<void()>& body);
  // Starts another thread of this process.
  Thread Start(std::function<void()> body);

  // Puts a line into the journal, as from the thread of this process that runs just now.
  void Note(Effect effect, std::string text) const;

  // Detaches and unloads. What is still open is recorded as misuse.
  void End();
  // Ends without detach, wherever its threads are; its mutexes are abandoned.
  void Kill();

  // What the process holds: handles and registry keys, heap blocks of the library.
  [[nodiscard]] unsigned open_handles() const;
  [[nodiscard]] unsigned new_handles() const;  // those beyond what the library took as it attached
  [[nodiscard]] unsigned heap_blocks() const;
  [[nodiscard]] unsigned held_mutexes() const;

 private:
  Device& device_;
  std::shared_ptr<ProcessState> state_;
};

}  // namespace sim

#endif  // PLATFORM_SIM_DEVICE_H_
