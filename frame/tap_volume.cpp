#include "frame/tap_volume.h"

#include "frame/registry.h"
#include "frame/result.h"
#include "include/palvalues.h"

namespace pal {
namespace {

constexpr const WCHAR* kVolumePath = TEXT("ControlPanel\\Volume");

constexpr DWORD kLoud = PAL_TAP_VOLUME_LOUD;
constexpr DWORD kLoudStored = 0x10002;
constexpr DWORD kSilentStored = 0x10000;  // as other programs store it

constexpr DWORD LevelOf(DWORD stored) {
  if (stored == kLoudStored) return kLoud;
  return stored == kSilentStored ? 0 : stored;
}

}  // namespace

// The module is never freed: coredll stays loaded as long as the process.
HRESULT ApplyAudioSetting() {
  const HMODULE coredll = LoadLibraryW(TEXT("coredll.dll"));
  if (coredll == nullptr) {
    kDisplayTrace.Error("ApplyAudioSetting -  Failed to load coredll.dll.  win32err: 0x%x\r\n",
                        GetLastError());
    return E_FAIL;
  }
  const FARPROC update = GetProcAddressW(coredll, TEXT("AudioUpdateFromRegistry"));
  if (update == nullptr) {
    kDisplayTrace.Error("ApplyAudioSetting -  AudioUpdateFromRegistry failed.  win32err: 0x%x\r\n",
                        GetLastError());
    return E_FAIL;
  }
  update();
  return S_OK;
}

HRESULT SetTapVolume(const TapVolume& volume, DWORD level) {
  if (level > kLoud) {
    volume.trace.Error(volume.invalid_input, level);
    return E_FAIL;
  }
  const HRESULT result = PALRegSetDword(HKEY_CURRENT_USER, kVolumePath, volume.value_name,
                                        level == kLoud ? kLoudStored : level);
  if (Failed(result)) {
    volume.trace.Error(volume.write_failed, kVolumePath, volume.value_name);
    return result;
  }
  return ApplyAudioSetting();
}

HRESULT GetTapVolume(const TapVolume& volume, DWORD* level) {
  if (level == nullptr) return E_FAIL;
  DWORD stored = 0;
  const HRESULT result = PALRegGetDword(HKEY_CURRENT_USER, kVolumePath, volume.value_name, &stored);
  if (Failed(result)) {
    volume.trace.Error(volume.read_failed, kVolumePath, volume.value_name);
    return result;
  }
  *level = LevelOf(stored);
  return result;
}

}  // namespace pal
