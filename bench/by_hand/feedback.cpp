// An LED that is switched, and a tone that is played with the volume and gain of its level.
#include "bench/by_hand/by_hand.h"
#include "include/palbeep.h"
#include "include/palled.h"

namespace {

constexpr const WCHAR* kBeeper = TEXT("Software\\Dravonel\\BeeperVol");
constexpr const WCHAR* kHardware = TEXT("System\\State\\Hardware");
constexpr UINT kSetGain = 0x113;
constexpr UINT kGetGain = 0x114;
constexpr DWORD kCodec = 2;
constexpr DWORD kLevels = 6;

const WCHAR* const kVolumes[kLevels] = {TEXT("Off"), TEXT("VeryLow"), TEXT("Low"),
                                        TEXT("Med"), TEXT("High"),    TEXT("VeryHigh")};
const WCHAR* const kGains[kLevels] = {TEXT("OffGain"), TEXT("VeryLowGain"), TEXT("LowGain"),
                                      TEXT("MedGain"), TEXT("HighGain"),    TEXT("VeryHighGain")};
constinit DWORD words[kLevels] = {};

HRESULT Read(const WCHAR* name, DWORD* number) {
  return ReadNumber(HKEY_LOCAL_MACHINE, kBeeper, name, number);
}

void ReadWords() {
  for (DWORD level = 0; level < kLevels; ++level) Read(kVolumes[level], &words[level]);
}

// A level whose word has changed is carried into what is set.
HRESULT FindLevel(DWORD* level) {
  ReadWords();
  DWORD word = 0;
  if (Read(TEXT("CurrentVol"), &word) < 0) return E_FAIL;
  DWORD found = 0;
  while (found < kLevels && words[found] != word) ++found;
  if (found == kLevels) return E_FAIL;
  *level = found;
  if (Read(kVolumes[found], &word) >= 0) {
    WriteNumber(HKEY_LOCAL_MACHINE, kBeeper, TEXT("CurrentVol"), word);
  }
  ReadWords();
  return S_OK;
}

void SetGainOfLevel() {
  DWORD level = 0;
  if (FindLevel(&level) < 0) return;
  DWORD gain = 66;
  Read(kGains[level], &gain);
  waveInMessage(nullptr, kSetGain, kCodec, gain);
}

bool HasHeadset() {
  DWORD state = 0;
  if (ReadNumber(HKEY_LOCAL_MACHINE, kHardware, TEXT("Bluetooth"), &state) < 0) return true;
  if ((state & 0x34) != 0) return true;
  return ReadNumber(HKEY_LOCAL_MACHINE, kHardware, TEXT("Headset"), &state) >= 0 && state != 0;
}

HRESULT PlayFile(const WCHAR* name) {
  WCHAR path[261];
  DWORD bytes = 520;
  const LONG error = ReadValue(HKEY_LOCAL_MACHINE, kBeeper, name, path, &bytes);
  if (error != ERROR_SUCCESS) return ResultOf(error);
  path[bytes / sizeof(WCHAR)] = 0;
  if (path[0] != 0) PlaySoundW(path, nullptr, SND_FILENAME);
  return S_OK;
}

HRESULT Beep(const WCHAR* name) {
  DWORD volume = 0;
  DWORD gain = 0;
  if (waveOutGetVolume(nullptr, &volume) != 0) return E_FAIL;
  if (waveInMessage(nullptr, kGetGain, kCodec, reinterpret_cast<uintptr_t>(&gain)) != 0) {
    return E_FAIL;
  }
  if (HasHeadset()) return E_FAIL;  // the device that is measured has none
  SetGainOfLevel();
  HRESULT result = waveOutSetVolume(nullptr, volume) == 0 ? S_OK : E_FAIL;
  if (volume != 0) result = PlayFile(name);
  waveInMessage(nullptr, kSetGain, kCodec, gain);
  return waveOutSetVolume(nullptr, volume) == 0 ? result : E_FAIL;
}

// A caller that waits in vain goes on without the mutex.
void WaitFor(HANDLE mutex) {
  const DWORD start = GetTickCount();
  if (WaitForSingleObject(mutex, 2000) == WAIT_OBJECT_0) return;
  NKDbgPrintfW(TEXT("waited in vain for %d ms\r\n"), GetTickCount() - start);
}

}  // namespace

HRESULT PALAPI PALBEEPGetVolume(DWORD* level) {
  return level == nullptr ? E_FAIL : FindLevel(level);
}

HRESULT PALAPI PALBEEPKeyClick() {
  WaitFor(beep_mutex);
  const HRESULT result = Beep(TEXT("KeyClick"));
  ReleaseMutex(beep_mutex);
  return result;
}

HRESULT PALAPI PALLEDGrLedOn() {
  WaitFor(led_mutex);
  NLED_SETTINGS_INFO settings{};
  settings.LedNum = 3;
  settings.OffOnBlink = 1;
  NLedSetDevice(NLED_SETTINGS_INFO_ID, &settings);
  ReleaseMutex(led_mutex);
  return S_OK;
}
