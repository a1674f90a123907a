#include "frame/audio_setting.h"

#include "frame/trace.h"

namespace pal {
namespace {
constexpr TraceSource kTrace{Facility::kDisplay};
}

// The module is never freed: coredll stays loaded as long as the process.
HRESULT ApplyAudioSetting() {
  const HMODULE coredll = LoadLibraryW(TEXT("coredll.dll"));
  if (coredll == nullptr) {
    kTrace.Error("ApplyAudioSetting -  Failed to load coredll.dll.  win32err: 0x%x\r\n",
                 GetLastError());
    return E_FAIL;
  }
  const FARPROC update = GetProcAddressW(coredll, TEXT("AudioUpdateFromRegistry"));
  if (update == nullptr) {
    kTrace.Error("ApplyAudioSetting -  AudioUpdateFromRegistry failed.  win32err: 0x%x\r\n",
                 GetLastError());
    return E_FAIL;
  }
  update();
  return S_OK;
}

}  // namespace pal
