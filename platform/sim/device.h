// The simulated device: how tests and tools control it.
//
//   sim::Device device;
//   device.files().Write("\\ConfigStore\\dcecfg", bytes);
//   sim::Process process(device, "settings.exe");          // loads its own copy of the library
//   HRESULT result = process.exports().PALMFGOpt_ConfigStoreRegUpdate();
//   device.journal().Texts(sim::Effect::kRegistry);
//
// Time is a discrete-event clock: it moves only when every thread of the device waits, and then
// jumps to the next deadline. One thread of the device runs at a time, until it waits. A run
// therefore always gives the same order. With Concurrency::kParallel all threads run at once.
//
// The thread that makes a device is its driver. Only the driver may make processes and threads and
// call into them, and its work between calls takes no time on the device. It may look at the
// registry, files, journal and misuse whenever no other thread runs: with kParallel, after Join.
//
// docs/platform.md has the facts of the platform by which it was made.
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

// A platform call that is made to fail. Calls are counted from the moment the fault is planned, and
// where the fault has a subject, only the calls with this subject. A call that closes or releases
// something fails after it has done so, because nothing else could. The error 258 lets a wait time
// out.
struct Fault {
  std::string call{};  // a name such as "RegSetValueExW"; empty: any call
  // The end of what the call is about: a registry key or value ("Beeper\\CurrentVol"), a file, a
  // driver's code ("set power"), an event, an entry of a module, a volume or gain. Empty: anything.
  std::string on{};
  unsigned nth = 1;           // the first one to fail
  bool from_then_on = false;  // and all calls that follow it
  std::uint32_t error = 31;   // ERROR_GEN_FAILURE
  bool kill = false;  // instead of failing, the calling process ends there without detaching
  // Instead of failing, ReadFile and WriteFile move at most this number of bytes.
  std::optional<std::uint32_t> transfers{};
};

// Where the library lies on a new device.
inline constexpr std::string_view kLibraryPath = "\\Program Files\\Dravonel\\DVLORQPAL.dll";

enum class RestartKind : std::uint8_t { kWarm, kCold };

// "restart, warm", as it stands in the journal.
[[nodiscard]] const char* RestartText(RestartKind kind);

// Thrown out of an export whose process is killed during the call.
class ProcessKilled : public std::exception {
 public:
  [[nodiscard]] const char* what() const noexcept override { return "the process was killed"; }
};

// The answer of a driver or of the kernel to one call, before the caller gets it. A test may change
// it, and so play a driver that gives wrong answers. It cannot be longer than the caller's buffer.
struct DriverAnswer {
  std::string_view call;          // "DeviceIoControl"
  std::span<std::uint8_t> bytes;  // the caller's buffer
  std::uint32_t returned = 0;     // the byte count for the caller, if the call gives one
  std::uint32_t error = 0;        // not 0: the call fails with it
};

// A library that processes can load. Its entries are found by name. An entry with a null address
// is missing in the library.
struct Module {
  std::string name;
  std::map<std::string, int (*)(), std::less<>> entries;
  std::string folder = "\\Windows";
  [[nodiscard]] std::string path() const { return folder + "\\" + name; }
};

// A program that processes can start. A file must lie at its path, or the program is missing.
struct Program {
  std::string path;  // "\\Windows\\orqautoreg.exe"
  // The program itself: it gets the command line and gives the exit code. It runs as the only
  // thread of a process of its own and may make the platform's calls.
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
  // Lets the device run for some time.
  void Advance(std::uint32_t ms);
  // Lets the device run until every thread has ended or waits without a time limit. Does not return
  // where a thread sleeps again and again.
  void RunUntilIdle();
  // Called at each jump of the clock with its length, for a device that keeps step with real time.
  void set_on_clock(std::function<void(std::uint64_t ms)> on_clock);
  // Lets threads also change turns at platform calls, in an order that depends only on the seed.
  void ShuffleTurns(std::uint32_t seed);

  // Adds a line to the journal that belongs to the device and to no process.
  void Note(Effect effect, std::string_view text);
  // Sets or resets a named event, as something outside of the processes would. False where no
  // process has an event of this name.
  bool SetEvent(std::string_view name, bool signalled = true);

  // Copies the registry, files, hardware, libraries and programs of another device, but neither its
  // processes nor its time and journal. No process may have anything open on either device.
  void CopyFrom(const Device& other);

  // Faults. A plan stays until it is cleared.
  void PlanFault(Fault fault);
  void ClearFaults();
  // The calls that failed by a plan, in their order, since the plans were cleared.
  [[nodiscard]] std::vector<std::string> faulted_calls() const;
  // The plans that were never reached: "RegSetValueExW:2, of 1 call".
  [[nodiscard]] std::vector<std::string> faults_not_reached() const;
  // Called with each answer of a driver, of the kernel's I/O controls, of the network, the display
  // and the radio, with each file's size, and with each registry value that fits the buffer.
  void set_on_answer(std::function<void(DriverAnswer& answer)> on_answer);
  // The number of platform calls since the device started: of one name, or all.
  [[nodiscard]] unsigned calls(std::string_view name) const;
  [[nodiscard]] unsigned calls() const;

  // Mistakes of the programs: handles used after their close or by another process, double closes,
  // calls that are not simulated, buffers without an address, registry paths that begin with a
  // backslash, registry keys used for what they were not opened for, handles and heap blocks left
  // at the end of a process, a library unloaded while a thread runs in it. A write past a buffer's
  // end is left to the address sanitizer.
  [[nodiscard]] const std::vector<std::string>& misuse() const;
  [[nodiscard]] std::vector<std::string> TakeMisuse();

  // Called with the bytes of each heap block that a library frees, just before it is gone.
  void set_on_free(std::function<void(std::string_view bytes)> on_free);

  // Libraries that LoadLibraryW finds: in \Windows by name, in any folder by path. Once one is
  // loaded, every path with its file name gives it again. A new device has
  //   coredll.dll      with its entry "AudioUpdateFromRegistry";
  //   DVLEventLog.dll  which writes trace lines into the journal;
  //   DVLORQPAL.dll    the provider, which does the services that the library passes on.
  void InstallModule(Module module);         // in place of one with the same path
  void RemoveModule(std::string_view name);  // in whatever folder
  [[nodiscard]] std::vector<Module> modules() const;
  // The path at which the next processes have the library under test. It is kLibraryPath at first.
  // That is also the provider's file name, so that a process cannot load the provider then.
  void set_library_path(std::string path);

  // Adds a program, in place of one with the same path. A new device has the registry importer,
  // "\Windows\orqautoreg.exe" (platform/sim/programs/registry_importer.h). Programs that still run
  // when the device ends are killed.
  void InstallProgram(Program program);
  // Starts the services of another device.
  void StartServicesOf(const Device& other);
  // Starts a program as a service: it runs from now on, and again after each restart. It need not
  // be installed. When this returns, the program has had its first turn.
  void StartProgram(const Program& program);

  // Restarts the device from outside, as a person would who holds its power button.
  void Restart(RestartKind kind);
  // The restarts since the device was made. A restart kills every process:
  // a call that runs in one throws ProcessKilled, and its Process can only be ended. Handles are
  // closed, named objects are gone, drivers are as after power-up, and services are started anew.
  // Registry, files, journal and time go on, for both kinds of restart.
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
  std::shared_ptr<ProcessState> process_;  // the thread's state refers to it
};

// A process with the library loaded. The library attaches when the process is made. It detaches
// when the process ends, or when the process frees it.
class Process {
 public:
  // `name` is that of the program's file, in "\Program Files", or its path. Throws std::logic_error
  // where the device has 32 processes already.
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
  // Runs a function as the main thread of this process. It may make the platform's calls.
  void Run(const std::function<void()>& body);
  // Starts another thread of this process.
  Thread Start(std::function<void()> body);

  // Adds a line to the journal, as from the thread of this process that runs now.
  void Note(Effect effect, std::string_view text) const;

  // Detaches and unloads. What is still open is recorded as misuse.
  void End();
  // Ends without detach, whatever its threads do. Its mutexes are abandoned.
  void Kill();

  // What the process holds: handles and registry keys, heap blocks of the library.
  [[nodiscard]] unsigned open_handles() const;
  [[nodiscard]] unsigned new_handles() const;  // without those of the attach
  [[nodiscard]] unsigned heap_blocks() const;
  [[nodiscard]] unsigned held_mutexes() const;
  // The system errors that the platform has given to the last call of an export: by the thread of
  // this process that runs now, or by its main thread.
  [[nodiscard]] const std::vector<std::uint32_t>& errors_of_call() const;

 private:
  Device& device_;
  std::shared_ptr<ProcessState> state_;
};

}  // namespace sim

#endif  // PLATFORM_SIM_DEVICE_H_
