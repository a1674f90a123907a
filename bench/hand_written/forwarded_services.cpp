#include "bench/hand_written/registry.h"
#include "include/palsysio.h"

namespace {

constinit HMODULE provider = nullptr;

using AnyFunction = void (*)();
using Switch = int (*)(DWORD enable);
using Free = int (*)(DWORD memory);
using Allocate = HRESULT (*)(DWORD a, DWORD b, DWORD* address);
using Map = HRESULT (*)(DWORD a, DWORD b, DWORD c, DWORD d, DWORD* address);

// Looked for once; the flag says that it was.
template <typename Function>
struct Target {
  Function function = nullptr;
  bool is_known = false;
};

template <typename Function>
Function Find(Target<Function>& target, const WCHAR* name) {
  if (target.is_known) return target.function;
  target.is_known = true;
  if (provider == nullptr) {
    provider = LoadLibraryW(TEXT("DVLORQPAL.dll"));
    if (provider == nullptr) return nullptr;
    const FARPROC log_version = GetProcAddressW(provider, TEXT("PALVER_LogVersion"));
    if (log_version != nullptr) log_version();
  }
  target.function =
      reinterpret_cast<Function>(reinterpret_cast<AnyFunction>(GetProcAddressW(provider, name)));
  return target.function;
}

constinit Target<Allocate> virtual_alloc_copy;
constinit Target<Map> map_io_space;
constinit Target<Allocate> imager_alloc;
constinit Target<Free> imager_free;
constinit Target<Switch> enable_camera;
constinit Target<Switch> enable_camera_clock;
constinit Target<Switch> enable_camera_power;

HRESULT Keep(DWORD found, DWORD* address) {
  *address = found;
  return found != 0 ? S_OK : E_FAIL;
}

HRESULT AllocateBy(Allocate allocate, DWORD a, DWORD b, DWORD* address) {
  DWORD found = 0;
  if (allocate != nullptr && allocate(a, b, &found) < 0) found = 0;
  return Keep(found, address);
}

HRESULT SwitchBy(Switch set, DWORD enable) {
  return set != nullptr && set(enable) != 0 ? S_OK : E_FAIL;
}

}  // namespace

HRESULT PALAPI PALSysio_VirtualAllocCopy(DWORD a, DWORD b, DWORD* address) {
  if (address == nullptr) return E_FAIL;
  return AllocateBy(Find(virtual_alloc_copy, TEXT("PALSysio_VirtualAllocCopy")), a, b, address);
}

HRESULT PALAPI PALSysio_MmMapIoSpace(DWORD a, DWORD b, DWORD c, DWORD d, DWORD* address) {
  if (address == nullptr) return E_FAIL;
  const Map map = Find(map_io_space, TEXT("PALSysio_MmMapIoSpace"));
  DWORD found = 0;
  if (map != nullptr && map(a, b, c, d, &found) < 0) found = 0;
  return Keep(found, address);
}

HRESULT PALAPI PALSysio_ImagerAllocPhysMem(DWORD a, DWORD b, DWORD* address) {
  if (address == nullptr) return E_FAIL;
  return AllocateBy(Find(imager_alloc, TEXT("PALSysio_ImagerAllocPhysMem")), a, b, address);
}

HRESULT PALAPI PALSysio_ImagerFreePhysMem(DWORD memory) {
  const Free free_memory = Find(imager_free, TEXT("PALSysio_ImagerFreePhysMem"));
  if (free_memory != nullptr) free_memory(memory);
  return S_OK;
}

HRESULT PALAPI PALSysio_DVLEnableCamera(DWORD enable) {
  return SwitchBy(Find(enable_camera, TEXT("PALSysio_DVLEnableCamera")), enable);
}
HRESULT PALAPI PALSysio_DVLEnableCameraClock(DWORD enable) {
  return SwitchBy(Find(enable_camera_clock, TEXT("PALSysio_DVLEnableCameraClock")), enable);
}
HRESULT PALAPI PALSysio_DVLEnableCameraPower(DWORD enable) {
  return SwitchBy(Find(enable_camera_power, TEXT("PALSysio_DVLEnableCameraPower")), enable);
}
