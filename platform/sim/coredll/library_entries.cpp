#include "platform/sim/coredll/library_entries.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <array>
#include <mutex>
#include <string>
#include <utility>

#include "platform/sim/kernel/kernel.h"
#include "platform/wince.h"

namespace sim {
namespace {

void LogFromEntry(Effect effect, std::string text, DWORD category = 0) {
  const ThreadState* thread = CurrentThread();
  if (thread == nullptr) return;
  Kernel& kernel = thread->process.kernel;
  const Scheduler::Lock lock(kernel.mutex);
  kernel.Log(thread, effect, std::move(text), category);
}

// The event log keeps every line, whatever its category.
DWORD LogString(DWORD category, const char* text) {
  LogFromEntry(Effect::kTrace, Escape(text), category);
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
