#include "bench/hand_written/mutex.h"
#include "bench/hand_written/registry.h"
#include "include/palbeep.h"
#include "include/palsysinfo.h"
#include "include/palvib.h"

namespace {

constexpr const WCHAR* kBeeper = TEXT("Software\\Dravonel\\BeeperVol");
constexpr const WCHAR* kIndicators = TEXT("SOFTWARE\\Dravonel\\PAL");
constexpr const WCHAR* kHardware = TEXT("System\\State\\Hardware");
constexpr const WCHAR* kShell = TEXT("ControlPanel\\Volume");

constexpr DWORD kPlayThrough = SND_FILENAME;
constexpr DWORD kLoop = SND_FILENAME | SND_LOOP | SND_ASYNC;

const WCHAR* const kVolumes[] = {TEXT("Off"),           TEXT("VeryLow"),    TEXT("Low"),
                                 TEXT("Med"),           TEXT("High"),       TEXT("VeryHigh"),
                                 TEXT("CurrentVol"),    TEXT("DefaultVol"), TEXT("CurrentHeadset"),
                                 TEXT("DefaultHeadset")};
const WCHAR* const kGains[] = {
    TEXT("OffGain"),        TEXT("VeryLowGain"),       TEXT("LowGain"), TEXT("MedGain"),
    TEXT("HighGain"),       TEXT("VeryHighGain"),      TEXT("CurGain"), TEXT("DefGain"),
    TEXT("CurHeadsetGain"), TEXT("DefaultHeadsetGain")};
const WCHAR* const kIndicatorNames[] = {TEXT("IntGRI"), TEXT("TethGRI"), TEXT("BTGRI"),
                                        TEXT("RFIDGRI")};
constexpr DWORD kSpeaker = 6;
constexpr DWORD kHeadset = 8;

constinit HANDLE beep_mutex = nullptr;
constinit WCHAR device_model[256] = {};
constinit DWORD words[6] = {0, 0x33333333, 0x66666666, 0x99999999, 0xCCCCCCCC, 0xFFFFFFFF};
constinit DWORD saved_volume = 0;
constinit DWORD saved_gain = 0;
constinit bool is_volume_saved = false;
constinit bool is_gain_saved = false;

HRESULT Read(const WCHAR* name, DWORD* value) {
  return ReadDword(HKEY_LOCAL_MACHINE, kBeeper, name, value);
}
HRESULT Write(const WCHAR* name, DWORD value) {
  return WriteDword(HKEY_LOCAL_MACHINE, kBeeper, name, value);
}

void ReadLevels() {
  for (DWORD level = 0; level < 6; ++level) Read(kVolumes[level], &words[level]);
}

HRESULT SetVolume(DWORD type, DWORD volume) {
  if (volume > 9) return E_FAIL;
  DWORD word = 0;
  HRESULT result = E_FAIL;
  if (Read(kVolumes[volume], &word) >= 0) result = Write(kVolumes[type], word);
  ReadLevels();
  return result;
}

HRESULT GetVolume(DWORD type, DWORD* level) {
  ReadLevels();
  DWORD word = 0;
  if (Read(kVolumes[type], &word) < 0) return E_FAIL;
  DWORD found = 0;
  while (found < 6 && words[found] != word) ++found;
  if (found == 6) return E_FAIL;
  if (type == kSpeaker) SetVolume(type, found);
  *level = found;
  return S_OK;
}

HRESULT StepVolume(bool up) {
  DWORD level = 0;
  const HRESULT result = GetVolume(kSpeaker, &level);
  if (result < 0) return result;
  if (up ? level == 5 : level == 2 || level == 0) return S_OK;
  return SetVolume(kSpeaker, up ? level + 1 : level - 1);
}

HRESULT SetShellVolume(DWORD level) {
  const DWORD word = words[level];
  if (waveOutSetVolume(nullptr, word) != 0) return E_FAIL;
  DWORD shown = 0;
  if (ReadDword(HKEY_CURRENT_USER, kShell, TEXT("Volume"), &shown) < 0) return E_FAIL;
  return shown == word ? S_OK : WriteDword(HKEY_CURRENT_USER, kShell, TEXT("Volume"), word);
}

HRESULT SetGain(DWORD index, DWORD gain) {
  if (gain > 100 || index > 9) return E_FAIL;
  const HRESULT result = Write(kGains[index], gain);
  return result < 0 ? E_FAIL : result;
}

HRESULT GetGain(DWORD index, DWORD* gain) {
  if (gain == nullptr || index > 9) return E_FAIL;
  const HRESULT result = Read(kGains[index], gain);
  return result < 0 ? E_FAIL : result;
}

bool HasHeadset() {
  DWORD state = 0;
  if (ReadDword(HKEY_LOCAL_MACHINE, kHardware, TEXT("Bluetooth"), &state) < 0) return true;
  if ((state & 0x34) != 0) return true;
  return ReadDword(HKEY_LOCAL_MACHINE, kHardware, TEXT("Headset"), &state) >= 0 && state != 0;
}

void SetGainOfLevel() {
  DWORD level = 0;
  if (GetVolume(kSpeaker, &level) < 0) return;
  DWORD gain = 66;
  GetGain(level, &gain);
  waveInMessage(nullptr, 0x113, 2, gain);
}

HRESULT PlayFile(int count, const WCHAR* name, DWORD flags) {
  WCHAR path[261];
  DWORD bytes = 520;
  const HRESULT result = ReadValue(HKEY_LOCAL_MACHINE, kBeeper, name, path, &bytes);
  if (result < 0) return result;
  path[bytes / sizeof(WCHAR)] = 0;
  if (path[0] == 0) return result;
  if (count == 1) {
    PlaySoundW(path, nullptr, flags);
    return result;
  }
  for (int tone = 0; tone < count; ++tone) {
    PlaySoundW(path, nullptr, flags);
    Sleep(50);
  }
  return result;
}

HRESULT Beep(int count, const WCHAR* name, DWORD flags) {
  DWORD volume = 0;
  DWORD gain = 0;
  const bool has_volume = waveOutGetVolume(nullptr, &volume) == 0;
  const bool has_gain = waveInMessage(nullptr, 0x114, 2, reinterpret_cast<uintptr_t>(&gain)) == 0;
  if (has_volume && (flags == kLoop || is_volume_saved)) {
    saved_volume = volume;
    is_volume_saved = true;
  }
  if (has_gain && (flags == kLoop || is_gain_saved)) {
    saved_gain = gain;
    is_gain_saved = true;
  }
  DWORD wanted = volume;
  bool is_wanted = has_volume;
  if (HasHeadset()) {
    is_wanted = true;
    if (Read(kVolumes[kHeadset], &wanted) < 0 && Read(kVolumes[kHeadset], &wanted) < 0) {
      wanted = 0x33333333;
    }
  }
  HRESULT result = S_OK;
  if (has_gain) SetGainOfLevel();
  if (has_volume && is_wanted && waveOutSetVolume(nullptr, wanted) != 0) result = E_FAIL;
  if (!is_wanted || wanted != 0) result = PlayFile(count, name, flags);
  if (flags != kPlayThrough) return result;
  if (has_gain) waveInMessage(nullptr, 0x113, 2, gain);
  if (has_volume && waveOutSetVolume(nullptr, volume) != 0) result = E_FAIL;
  return result;
}

HRESULT BeepAlone(const WCHAR* name, DWORD flags) {
  HRESULT result = WaitFor(beep_mutex);
  if (result < 0) return result;
  result = Beep(1, name, flags);
  ReleaseMutex(beep_mutex);
  return result;
}

HRESULT ReadIndicator(DWORD scan_type, DWORD* value) {
  return ReadDword(HKEY_LOCAL_MACHINE, kIndicators, kIndicatorNames[scan_type], value);
}

HRESULT Indicate(DWORD scan_type) {
  DWORD value = 0;
  HRESULT result = ReadIndicator(scan_type, &value);
  if (value >= 3 && value <= 5) {
    const HRESULT vibration = PALVIBVibrate(scan_type);
    if (vibration < 0) result = vibration;
  }
  const DWORD tones = value <= 5 ? value % 3 : 0;
  if (tones != 0) result = Beep(static_cast<int>(tones), TEXT("GoodRead"), kPlayThrough);
  return result;
}

HRESULT IndicateFailure() {
  DWORD value = 0;
  HRESULT result = ReadIndicator(0, &value);
  if (value >= 3 && value <= 5) {
    result = PALVIBVibrate(0);
    for (int pulse = 0; result >= 0 && pulse < 4; ++pulse) {
      result = PALVIBVibrate(100);
      Sleep(100);
    }
  }
  if (value <= 5 && value % 3 != 0) result = Beep(1, TEXT("BadRead"), kPlayThrough);
  return result;
}

}  // namespace

HRESULT PALAPI PALBEEPInit() {
  if (beep_mutex == nullptr) {
    beep_mutex = CreateMutexW(nullptr, FALSE, TEXT("DVLORQPAL_BEEP_MUTEX"));
  }
  DWORD bytes = sizeof(device_model);
  if (PALSysinfo_GetModelExW(device_model, &bytes) < 0) device_model[0] = 0;
  return S_OK;
}

HRESULT PALAPI PALBEEPTerm() {
  if (WaitFor(beep_mutex) < 0) return S_OK;
  ReleaseMutex(beep_mutex);
  CloseHandle(beep_mutex);
  beep_mutex = nullptr;
  return S_OK;
}

HRESULT PALAPI PALBEEPSetVolume(DWORD setting) {
  if (setting == 8) return StepVolume(false);
  if (setting == 9) return StepVolume(true);
  if (setting > 5) return E_FAIL;
  SetVolume(kSpeaker, setting);
  return SetShellVolume(setting);
}

HRESULT PALAPI PALBEEPGetVolume(DWORD* level) {
  return level == nullptr ? E_FAIL : GetVolume(kSpeaker, level);
}
HRESULT PALAPI PALBEEPSetHeadsetBeeperVolume(DWORD volume_index) {
  return SetVolume(kHeadset, volume_index);
}
HRESULT PALAPI PALBEEPGetHeadsetBeeperVolume(DWORD* level) {
  if (level == nullptr) return E_FAIL;
  return GetVolume(kHeadset, level);
}
HRESULT PALAPI PALBEEPSetSpeakerGain(DWORD in_vol_index, DWORD in_gain) {
  return SetGain(in_vol_index, in_gain);
}
HRESULT PALAPI PALBEEPGetSpeakerGain(DWORD in_vol_index, DWORD* gain) {
  return GetGain(in_vol_index, gain);
}
HRESULT PALAPI PALBEEPSetHeadsetGain(DWORD gain) {
  return SetGain(kHeadset, gain);
}
HRESULT PALAPI PALBEEPGetHeadsetGain(DWORD* gain) {
  return GetGain(kHeadset, gain);
}

HRESULT PALAPI PALBEEPSetGRI(DWORD scan_type, DWORD value) {
  if (value > 5 || scan_type > 3) return E_FAIL;
  return WriteDword(HKEY_LOCAL_MACHINE, kIndicators, kIndicatorNames[scan_type], value);
}
HRESULT PALAPI PALBEEPGetGRI(DWORD scan_type, DWORD* value) {
  if (value == nullptr || scan_type > 3) return E_FAIL;
  return ReadIndicator(scan_type, value);
}

HRESULT PALAPI PALBEEPGoodReadEx(DWORD in_scan_type) {
  if (in_scan_type > 3) return E_INVALIDARG;
  HRESULT result = WaitFor(beep_mutex);
  if (result < 0) return result;
  result = Indicate(in_scan_type);
  ReleaseMutex(beep_mutex);
  return result;
}

HRESULT PALAPI PALBEEPBadRead() {
  HRESULT result = WaitFor(beep_mutex);
  if (result < 0) return result;
  result = IndicateFailure();
  ReleaseMutex(beep_mutex);
  return result;
}

HRESULT PALAPI PALBEEPChangeConfig() {
  return BeepAlone(TEXT("ConfigChange"), kPlayThrough);
}
HRESULT PALAPI PALBEEPChangeConfigError() {
  return BeepAlone(TEXT("ConfigChangeError"), kPlayThrough);
}
HRESULT PALAPI PALBEEPKeyClick() {
  return BeepAlone(TEXT("KeyClick"), kPlayThrough);
}
HRESULT PALAPI PALBEEPStartTagSearch() {
  return BeepAlone(TEXT("TagSearch"), kLoop);
}

HRESULT PALAPI PALBEEPStopTagSearch() {
  HRESULT result = WaitFor(beep_mutex);
  if (result < 0) return result;
  if (PlaySoundW(nullptr, nullptr, 0) == FALSE) result = ResultOfLastError();
  if (is_gain_saved) waveInMessage(nullptr, 0x113, 2, saved_gain);
  if (is_volume_saved && waveOutSetVolume(nullptr, saved_volume) != 0) result = E_FAIL;
  is_gain_saved = false;
  is_volume_saved = false;
  ReleaseMutex(beep_mutex);
  return result;
}
