#include "platform/sim/coredll/library_entries.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <mutex>
#include <string>
#include <utility>

#include "platform/sim/kernel/kernel.h"
#include "platform/wince.h"

namespace sim {
namespace {

void LogFromEntry(Effect effect, std::string_view text) {
  const ThreadState* thread = CurrentThread();
  if (thread == nullptr) return;
  Kernel& kernel = thread->process.kernel;
  const Scheduler::Lock lock(kernel.mutex);
  kernel.Log(thread, effect, text);
}

// The lines of the library that show where a caller's buffer and its length are.
constexpr std::array<std::string_view, 2> kAddressLines{"PalProcessResultExA(fcn,",
                                                        "PalSysIoRequestExW(fcn,"};

// Those addresses are the host's, and others in each run. The journal has one number for each.
std::string WithStableAddresses(std::string line) {
  const auto* const begin = std::ranges::find_if(
      kAddressLines, [&line](std::string_view each) { return line.starts_with(each); });
  if (begin == kAddressLines.end()) return line;
  std::size_t at = begin->size();
  for (const std::string_view shown : {"0x1000", "0x2000"}) {
    const std::size_t end = line.find_first_of(",)", at);
    if (end == std::string::npos) break;
    if (line.compare(at, end - at, "0x0") != 0) line.replace(at, end - at, shown);
    at = line.find_first_of(",)", at) + 1;
  }
  return line;
}

// The event log keeps every line, whatever its category.
DWORD LogString(DWORD category, const char* text) {
  const ThreadState* thread = CurrentThread();
  if (thread == nullptr) return 0;
  Kernel& kernel = thread->process.kernel;
  const Scheduler::Lock lock(kernel.mutex);
  // Most of a run's lines are these, and some runs are not read.
  if (kernel.journal.is_read()) {
    kernel.Log(thread, Effect::kTrace, WithStableAddresses(text), category);
  }
  return 0;
}

int UpdateAudioFromRegistry() {
  LogFromEntry(Effect::kAudio, "settings read from the registry");
  return 0;
}

// The services of the provider library. The address that a service gives follows from its first
// argument.
constexpr DWORD kFirstAddress = 0xA0000000;

template <class... Arguments>
void LogService(std::string_view name, Arguments... arguments) {
  const std::array<DWORD, sizeof...(Arguments)> numbers{arguments...};
  LogFromEntry(Effect::kModule, fmt::format("{}({:#x})", name, fmt::join(numbers, ", ")));
}

HRESULT VirtualAllocCopy(DWORD a, DWORD b, DWORD* address) {
  LogService("PALSysio_VirtualAllocCopy", a, b);
  *address = kFirstAddress | a;
  return S_OK;
}

HRESULT MmMapIoSpace(DWORD a, DWORD b, DWORD c, DWORD d, DWORD* address) {
  LogService("PALSysio_MmMapIoSpace", a, b, c, d);
  *address = kFirstAddress | a;
  return S_OK;
}

HRESULT ImagerAllocPhysMem(DWORD a, DWORD b, DWORD* address) {
  LogService("PALSysio_ImagerAllocPhysMem", a, b);
  *address = kFirstAddress | a;
  return S_OK;
}

HRESULT ImagerFreePhysMem(DWORD address) {
  LogService("PALSysio_ImagerFreePhysMem", address);
  return S_OK;
}

HRESULT EnableCamera(DWORD enable) {
  LogService("PALSysio_DVLEnableCamera", enable);
  return TRUE;
}

HRESULT EnableCameraClock(DWORD enable) {
  LogService("PALSysio_DVLEnableCameraClock", enable);
  return TRUE;
}

HRESULT EnableCameraPower(DWORD enable) {
  LogService("PALSysio_DVLEnableCameraPower", enable);
  return TRUE;
}

HRESULT LogVersion() {
  LogFromEntry(Effect::kTrace, "Loaded provider");
  return S_OK;
}

// Entries are kept with the type that the platform's lookup gives. The caller casts an entry to its
// real type.
template <class Function>
std::pair<const std::string, int (*)()> Entry(const char* name, Function* function) {
  return {name, reinterpret_cast<int (*)()>(reinterpret_cast<void*>(function))};
}

Module Provider() {
  return {"DVLORQPAL.dll",
          {
              Entry("PALSysio_VirtualAllocCopy", &VirtualAllocCopy),
              Entry("PALSysio_MmMapIoSpace", &MmMapIoSpace),
              Entry("PALSysio_ImagerAllocPhysMem", &ImagerAllocPhysMem),
              Entry("PALSysio_ImagerFreePhysMem", &ImagerFreePhysMem),
              Entry("PALSysio_DVLEnableCamera", &EnableCamera),
              Entry("PALSysio_DVLEnableCameraClock", &EnableCameraClock),
              Entry("PALSysio_DVLEnableCameraPower", &EnableCameraPower),
              Entry("PALVER_LogVersion", &LogVersion),
          }};
}

}  // namespace

std::vector<Module> BuiltInModules() {
  return {
      {"coredll.dll", {{"AudioUpdateFromRegistry", &UpdateAudioFromRegistry}}},
      Provider(),
      {"DVLEventLog.dll", {Entry("DVLLogString", &LogString)}},
  };
}

}  // namespace sim
