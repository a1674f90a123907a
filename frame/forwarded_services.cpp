// The services that another library, the provider, does for this one.
#include <array>
#include <atomic>
#include <cstddef>
#include <string_view>

#include "frame/own_module.h"
#include "frame/result.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "frame/unique_handle.h"
#include "include/palsysio.h"

namespace pal {
namespace {

constexpr WideText kProviderName = TEXT("DVLORQPAL.dll");
constexpr const char* kVersionExport = "PALVER_LogVersion";

using Path = std::array<WCHAR, MAX_PATH>;

template <typename... Arguments>
void Trace(Severity severity, TraceSource::Format<Arguments...> format, Arguments... arguments) {
  PALSysioTrace(0, TraceCategory(Facility::kProvider, severity), format.text(),
                VariadicTraceArgument(arguments)...);
}

// Null where the provider has no such export.
FARPROC FindExport(HMODULE provider, const char* name) {
  std::array<WCHAR, 64> wide_name{};
  FARPROC found = nullptr;
  if (Widen(wide_name, name)) found = GetProcAddressW(provider, wide_name.data());
  if (found == nullptr) Trace(Severity::kError, "%s not supported\r\n", name);
  return found;
}

// Null where nothing is loaded from there but this library itself: its exports would call
// themselves.
HMODULE LoadProviderFrom(const WCHAR* path) {
  UniqueModule module(LoadLibraryW(path));
  Trace(Severity::kInfo, "Loading %ls,winerr:0x%x,proc:0x%x\r\n", path, GetLastError(),
        GetCurrentProcessId());
  if (!module || module.get() == OwnModule()) return nullptr;
  const FARPROC log_version = FindExport(module.get(), kVersionExport);
  if (log_version != nullptr) log_version();
  return module.Release();
}

// False where there is no path of at most 259 units.
bool PathBesideProgram(Path& path) {
  const DWORD units = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
  if (units == 0 || units >= path.size()) return false;
  size_t folder = units;
  while (folder > 0 && path[folder - 1] != TEXT('\\')) --folder;
  path[folder] = 0;
  return Append(path, kProviderName);
}

HMODULE LoadProvider() {
  HMODULE module = LoadProviderFrom(kProviderName.data());
  Path path{};
  if (module == nullptr && PathBesideProgram(path)) module = LoadProviderFrom(path.data());
  if (module == nullptr) {
    Trace(Severity::kError, "All PAL load attempts failed. proc:0x%x\r\n", GetCurrentProcessId());
  }
  return module;
}

// Two threads may load the provider at the same time, each for itself: loading is counted, both get
// the same, and it is never freed.
constinit std::atomic<HMODULE> provider{nullptr};

// Gives the provider's export of this name, and loads the provider where the process has none yet.
//
// S_OK       `address` is the export's
// E_NOTIMPL  there is no provider, or it has no such export; `address` is unchanged
HRESULT PalLoadProviderFunction(const char* name, FARPROC& address) {
  HMODULE module = provider.load(std::memory_order_relaxed);
  if (module == nullptr) {
    module = LoadProvider();
    if (module == nullptr) return E_NOTIMPL;
    provider.store(module, std::memory_order_relaxed);
  }
  const FARPROC found = FindExport(module, name);
  if (found == nullptr) return E_NOTIMPL;
  address = found;
  return S_OK;
}

// Stands for a target that was looked for in vain. One word says both whether the look has been and
// what it found, so that two first calls at once cannot take the one for the other.
int WINAPI MissingTarget() {
  return 0;
}

struct Service {
  const char* name;
  std::atomic<FARPROC> target{nullptr};  // null before the first call
};
constinit Service virtual_alloc_copy{"PALSysio_VirtualAllocCopy"};
constinit Service mm_map_io_space{"PALSysio_MmMapIoSpace"};
constinit Service imager_alloc_phys_mem{"PALSysio_ImagerAllocPhysMem"};
constinit Service imager_free_phys_mem{"PALSysio_ImagerFreePhysMem"};
constinit Service enable_camera{"PALSysio_DVLEnableCamera"};
constinit Service enable_camera_clock{"PALSysio_DVLEnableCameraClock"};
constinit Service enable_camera_power{"PALSysio_DVLEnableCameraPower"};

// Apart from TargetOf, so that the calls behind the first do not pay for it.
[[gnu::noinline]] FARPROC LookForTarget(Service& service) {
  FARPROC target = nullptr;
  if (Failed(PalLoadProviderFunction(service.name, target))) target = &MissingTarget;
  service.target.store(target, std::memory_order_relaxed);
  return target;
}

FARPROC TargetOf(Service& service) {
  FARPROC target = service.target.load(std::memory_order_relaxed);
  return target != nullptr ? target : LookForTarget(service);
}

// Null where the provider does not have it.
template <typename... Arguments>
auto TargetAs(Service& service) {
  using Function = HRESULT(WINAPI*)(Arguments...);
  using AnyFunction = void (*)();  // the one that compilers let a function pointer pass through
  const FARPROC target = TargetOf(service);
  return target == &MissingTarget
             ? nullptr
             : reinterpret_cast<Function>(reinterpret_cast<AnyFunction>(target));
}

// A service whose last argument gets an address.
template <typename... Arguments>
HRESULT ForwardForAddress(Service& service, DWORD* address, Arguments... arguments) {
  if (address == nullptr) return E_FAIL;
  const auto function = TargetAs<Arguments..., DWORD*>(service);
  DWORD answer = 0;
  if (function != nullptr && Failed(function(arguments..., &answer))) answer = 0;
  *address = answer;
  return answer != 0 ? S_OK : E_FAIL;
}

HRESULT ForwardSwitch(Service& service, DWORD enable) {
  const auto function = TargetAs<DWORD>(service);
  return function != nullptr && function(enable) != 0 ? S_OK : E_FAIL;
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALSysio_VirtualAllocCopy(DWORD a, DWORD b, DWORD* address) {
  return pal::ForwardForAddress(pal::virtual_alloc_copy, address, a, b);
}

HRESULT PALAPI PALSysio_MmMapIoSpace(DWORD a, DWORD b, DWORD c, DWORD d, DWORD* address) {
  return pal::ForwardForAddress(pal::mm_map_io_space, address, a, b, c, d);
}

HRESULT PALAPI PALSysio_ImagerAllocPhysMem(DWORD a, DWORD b, DWORD* address) {
  return pal::ForwardForAddress(pal::imager_alloc_phys_mem, address, a, b);
}

HRESULT PALAPI PALSysio_ImagerFreePhysMem(DWORD memory) {
  const auto function = pal::TargetAs<DWORD>(pal::imager_free_phys_mem);
  if (function != nullptr) function(memory);
  return S_OK;
}

HRESULT PALAPI PALSysio_DVLEnableCamera(DWORD enable) {
  return pal::ForwardSwitch(pal::enable_camera, enable);
}

HRESULT PALAPI PALSysio_DVLEnableCameraClock(DWORD enable) {
  return pal::ForwardSwitch(pal::enable_camera_clock, enable);
}

HRESULT PALAPI PALSysio_DVLEnableCameraPower(DWORD enable) {
  return pal::ForwardSwitch(pal::enable_camera_power, enable);
}
