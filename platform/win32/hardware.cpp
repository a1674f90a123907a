#include "platform/win32/hardware.h"

#include <exception>

#include "platform/sim/coredll/call.h"
#include "platform/sim/description_part.h"
#include "platform/sim/device_description.h"
#include "platform/sim/kernel/program_process.h"
#include "platform/sim/programs/registry_importer.h"
#include "platform/win32/host_folder.h"
#include "platform/win32/machine.h"

// The simulated device's functions, which are the platform's under other names.
extern "C" {
HANDLE SimulatedCreateFileW(LPCWSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                            DWORD disposition, DWORD flags, HANDLE unused);
BOOL SimulatedCloseHandle(HANDLE handle);
BOOL SimulatedDeviceIoControl(HANDLE device, DWORD code, LPVOID in, DWORD in_bytes, LPVOID out,
                              DWORD out_bytes, LPDWORD returned, LPOVERLAPPED unused);
DWORD SimulatedSetSystemPowerState(LPCWSTR state, DWORD flags, DWORD options);
}

namespace win32 {
namespace {

// Far from every handle of Windows.
constexpr std::uintptr_t kDriverBit = std::uintptr_t{1} << 40;

HANDLE SimulatedHandle(const void* handle) {
  return reinterpret_cast<HANDLE>(reinterpret_cast<std::uintptr_t>(handle) & ~kDriverBit);
}

}  // namespace

// A description that cannot be read leaves a device without parameters, adapters and drivers.
Machine::Machine()
    : process_(device_.kernel(), GetCurrentProcessId(), "caller.exe"),
      thread_(process_, 1, device_.kernel().driver_strand) {
  device_.journal().set_keeps_entries(false);
  device_.journal().set_listener(
      [](const sim::JournalEntry& entry) { AppendLine(L"journal.txt", sim::ToLine(entry)); });
  try {
    sim::LoadDescription(device_, BesideLibrary(L"device\\device.toml"));
  } catch (const std::exception& error) {
    AppendLine(L"journal.txt", error.what());
  }
}

Machine& TheMachine() {
  static Machine machine;
  return machine;
}

bool IsDriver(const void* handle) {
  constexpr std::uintptr_t kFailed = ~std::uintptr_t{0};
  const auto number = reinterpret_cast<std::uintptr_t>(handle);
  return number != kFailed && (number & kDriverBit) != 0;
}

void* OpenDriver(const wchar_t* name, unsigned long access, unsigned long share,
                 unsigned long disposition) {
  const HANDLE opened = SimulatedCreateFileW(reinterpret_cast<LPCWSTR>(name),
                                             static_cast<DWORD>(access), static_cast<DWORD>(share),
                                             nullptr, static_cast<DWORD>(disposition), 0, nullptr);
  if (opened == INVALID_HANDLE_VALUE) return opened;
  return reinterpret_cast<void*>(reinterpret_cast<std::uintptr_t>(opened) | kDriverBit);
}

int CloseDriver(void* handle) {
  return SimulatedCloseHandle(SimulatedHandle(handle));
}

}  // namespace win32

extern "C" {

BOOL Win32DeviceIoControl(HANDLE device, DWORD code, LPVOID in, DWORD in_bytes, LPVOID out,
                          DWORD out_bytes, LPDWORD returned, LPOVERLAPPED overlapped) {
  return SimulatedDeviceIoControl(win32::SimulatedHandle(device), code, in, in_bytes, out,
                                  out_bytes, returned, overlapped);
}

// A PC goes on where a device would restart.
DWORD Win32SetSystemPowerState(LPCWSTR state, DWORD flags, DWORD options) {
  try {
    return SimulatedSetSystemPowerState(state, flags, options);
  } catch (const sim::ProcessKilled&) {
    return ERROR_SUCCESS;
  }
}

int Win32AudioUpdateFromRegistry() {
  win32::TheMachine().device().Note(sim::Effect::kAudio, "settings read from the registry");
  return 0;
}

}  // extern "C"

// What of the simulated device Windows does itself: processes, programs and libraries.
namespace sim {

void Kernel::Restart(const ThreadState* thread, RestartKind kind) {
  Log(thread, Effect::kPower, kind == RestartKind::kCold ? "restart, cold" : "restart, warm");
  for (const auto& each : hardware.drivers) each->Restart();
}

LibraryCopy::~LibraryCopy() = default;

std::shared_ptr<ProcessState> StartProgram(Kernel& /*kernel*/, const Program& /*program*/,
                                           const std::string& /*command_line*/) {
  return nullptr;
}

void EndPrograms(Kernel& /*kernel*/) {}

Program RegistryImporter(std::uint32_t /*takes_ms*/) {
  return {};
}

void ReadPrograms(const Part& /*part*/, const toml::node& /*node*/, Device& /*device*/) {}

void ReadServices(const Part& /*part*/, const toml::node& /*node*/, Device& /*device*/) {}

}  // namespace sim
