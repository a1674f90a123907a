#include "frame/forwarded_services.h"

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

}  // namespace

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

namespace {

// Stands for a target that was looked for in vain. One word says both whether the look has been and
// what it found, so that two first calls at once cannot take the one for the other.
int WINAPI MissingTarget() {
  return 0;
}

enum class Service : size_t {
  kVirtualAllocCopy,
  kMmMapIoSpace,
  kImagerAllocPhysMem,
  kImagerFreePhysMem,
  kEnableCamera,
  kEnableCameraClock,
  kEnableCameraPower,
};

struct ServiceRow {
  Service service;
  const char* name;
};

constexpr auto kServices = std::to_array<ServiceRow>({
    {Service::kVirtualAllocCopy, "PALSysio_VirtualAllocCopy"},
    {Service::kMmMapIoSpace, "PALSysio_MmMapIoSpace"},
    {Service::kImagerAllocPhysMem, "PALSysio_ImagerAllocPhysMem"},
    {Service::kImagerFreePhysMem, "PALSysio_ImagerFreePhysMem"},
    {Service::kEnableCamera, "PALSysio_DVLEnableCamera"},
    {Service::kEnableCameraClock, "PALSysio_DVLEnableCameraClock"},
    {Service::kEnableCameraPower, "PALSysio_DVLEnableCameraPower"},
});

consteval bool RowsAreInOrder() {
  for (size_t row = 0; row < kServices.size(); ++row) {
    if (static_cast<size_t>(kServices[row].service) != row) return false;
  }
  return true;
}
static_assert(RowsAreInOrder());

// One for each row; null before its first call.
constinit std::array<std::atomic<FARPROC>, kServices.size()> targets{};

// Apart from TargetOf, so that the calls behind the first do not pay for it.
[[gnu::noinline]] FARPROC LookForTarget(size_t row) {
  FARPROC target = nullptr;
  if (Failed(PalLoadProviderFunction(kServices[row].name, target))) target = &MissingTarget;
  targets[row].store(target, std::memory_order_relaxed);
  return target;
}

FARPROC TargetOf(Service service) {
  const auto row = static_cast<size_t>(service);
  FARPROC target = targets[row].load(std::memory_order_relaxed);
  return target != nullptr ? target : LookForTarget(row);
}

// Null where the provider does not have it.
template <typename... Arguments>
auto TargetAs(Service service) {
  using Function = HRESULT(WINAPI*)(Arguments...);
  using AnyFunction = void (*)();  // the one that compilers let a function pointer pass through
  const FARPROC target = TargetOf(service);
  return target == &MissingTarget
             ? nullptr
             : reinterpret_cast<Function>(reinterpret_cast<AnyFunction>(target));
}

// A service whose last argument gets an address.
template <typename... Arguments>
HRESULT ForwardForAddress(Service service, DWORD* address, Arguments... arguments) {
  if (address == nullptr) return E_FAIL;
  const auto function = TargetAs<Arguments..., DWORD*>(service);
  DWORD answer = 0;
  if (function != nullptr && Failed(function(arguments..., &answer))) answer = 0;
  *address = answer;
  return answer != 0 ? S_OK : E_FAIL;
}

HRESULT ForwardSwitch(Service service, DWORD enable) {
  const auto function = TargetAs<DWORD>(service);
  return function != nullptr && function(enable) != 0 ? S_OK : E_FAIL;
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALSysio_VirtualAllocCopy(DWORD a, DWORD b, DWORD* address) {
  return pal::ForwardForAddress(pal::Service::kVirtualAllocCopy, address, a, b);
}

HRESULT PALAPI PALSysio_MmMapIoSpace(DWORD a, DWORD b, DWORD c, DWORD d, DWORD* address) {
  return pal::ForwardForAddress(pal::Service::kMmMapIoSpace, address, a, b, c, d);
}

HRESULT PALAPI PALSysio_ImagerAllocPhysMem(DWORD a, DWORD b, DWORD* address) {
  return pal::ForwardForAddress(pal::Service::kImagerAllocPhysMem, address, a, b);
}

HRESULT PALAPI PALSysio_ImagerFreePhysMem(DWORD memory) {
  const auto function = pal::TargetAs<DWORD>(pal::Service::kImagerFreePhysMem);
  if (function != nullptr) function(memory);
  return S_OK;
}

HRESULT PALAPI PALSysio_DVLEnableCamera(DWORD enable) {
  return pal::ForwardSwitch(pal::Service::kEnableCamera, enable);
}

HRESULT PALAPI PALSysio_DVLEnableCameraClock(DWORD enable) {
  return pal::ForwardSwitch(pal::Service::kEnableCameraClock, enable);
}

HRESULT PALAPI PALSysio_DVLEnableCameraPower(DWORD enable) {
  return pal::ForwardSwitch(pal::Service::kEnableCameraPower, enable);
}
