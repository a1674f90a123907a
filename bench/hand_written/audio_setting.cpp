#include "bench/hand_written/audio_setting.h"

#include "bench/hand_written/registry.h"

HRESULT WriteTapVolume(const WCHAR* name, DWORD level) {
  if (level > 2) return E_FAIL;
  const HRESULT result = WriteDword(HKEY_CURRENT_USER, TEXT("ControlPanel\\Volume"), name,
                                    level == 2 ? 0x10002 : level);
  if (result < 0) return result;
  HMODULE coredll = LoadLibraryW(TEXT("coredll.dll"));
  if (coredll == nullptr) return E_FAIL;
  const FARPROC update = GetProcAddressW(coredll, TEXT("AudioUpdateFromRegistry"));
  if (update == nullptr) return E_FAIL;
  update();
  return S_OK;
}

HRESULT ReadTapVolume(const WCHAR* name, DWORD* level) {
  if (level == nullptr) return E_FAIL;
  DWORD stored = 0;
  const HRESULT result = ReadDword(HKEY_CURRENT_USER, TEXT("ControlPanel\\Volume"), name, &stored);
  if (result < 0) return result;
  if (stored == 0x10002) stored = 2;
  if (stored == 0x10000) stored = 0;
  *level = stored;
  return result;
}
