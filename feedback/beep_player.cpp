#include "feedback/beep_player.h"

#include <atomic>
#include <optional>

#include "feedback/beeper_registry.h"
#include "feedback/sound_levels.h"
#include "feedback/volume.h"
#include "frame/result.h"
#include "frame/trace.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kBeeper};

constexpr const WCHAR* kHardwareStatePath = TEXT("System\\State\\Hardware");

constexpr size_t kPathUnits = 260;
constexpr DWORD kPauseMs = 50;

// A level that StopTagSearch puts back. Without a tag search there is none.
//
// It is used under the mutex, but for a beep whose wait timed out. Such a beep never reads a level
// that was not saved: the device has one processor, so that other threads see the stores in the
// order in which the compiler leaves them. It may miss a level that is being saved, or see another
// beep's.
class SavedLevel {
 public:
  // At the start of a tag search.
  void Save(std::optional<DWORD> level) {
    if (!level) return;
    level_.store(*level, std::memory_order_relaxed);
    std::atomic_signal_fence(std::memory_order_release);
    is_saved_.store(true, std::memory_order_relaxed);
  }
  // At the start of any other beep. During a tag search its level takes the saved one's place.
  void Update(std::optional<DWORD> level) {
    if (is_saved_.load(std::memory_order_relaxed)) Save(level);
  }
  [[nodiscard]] std::optional<DWORD> Get() const {
    if (!is_saved_.load(std::memory_order_relaxed)) return std::nullopt;
    std::atomic_signal_fence(std::memory_order_acquire);
    return level_.load(std::memory_order_relaxed);
  }
  void Clear() { is_saved_.store(false, std::memory_order_relaxed); }

 private:
  std::atomic<DWORD> level_{0};
  std::atomic<bool> is_saved_{false};
};
constinit SavedLevel saved_volume;
constinit SavedLevel saved_gain;

// The system's levels. A level that cannot be read is not changed: it could not be put back.
struct Levels {
  std::optional<DWORD> volume;
  std::optional<DWORD> gain;
};

std::optional<DWORD> ReadLevel(HRESULT (*get)(DWORD& level), TraceSource::Format<HRESULT> failed) {
  DWORD level = 0;
  const HRESULT result = get(level);
  if (Succeeded(result)) return level;
  kTrace.Error(failed, result);
  return std::nullopt;
}

Levels ReadLevels() {
  return {
      .volume =
          ReadLevel(&PALBEEPGetCurSysVol, "PlayDvlSynchronousBeep - 0x%x=PALBEEPGetCurSysVol()"),
      .gain = ReadLevel(&PALBEEPGetCurGain, "PlayDvlSynchronousBeep - 0x%x=PALBEEPGetCurGain()"),
  };
}

// True where there is nothing to put back, or it was put back. Else false, and `failed` is traced.
bool RestoreVolume(std::optional<DWORD> volume, TraceSource::Format<> failed) {
  if (!volume || Succeeded(PALBEEPSetBeepsCurSysVol(*volume))) return true;
  kTrace.Error(failed);
  return false;
}

// Always succeeds, so that these lines are never written:
// "PlayDvlSynchronousBeep - Failed to restore gain"
// "PALBEEPStopTagSearch - Failed to restore gain"
void RestoreGain(std::optional<DWORD> gain) {
  if (gain) PALBEEPRestoreGain(*gain);
}

HRESULT ReadHardwareState(const WCHAR* name, DWORD& state) {
  return PALRegGetDword(HKEY_LOCAL_MACHINE, kHardwareStatePath, name, &state);
}

// True where the state cannot be read: the headset's volume is the lower one.
bool IsBTHeadsetConnected() {
  constexpr DWORD kHandsFree = 0x10;
  constexpr DWORD kHandsFreeAudio = 0x20;
  constexpr DWORD kOtherAudio = 0x04;
  DWORD state = 0;
  if (Failed(ReadHardwareState(TEXT("Bluetooth"), state))) {
    kTrace.Error("IsBTHeadsetConnected - Reg read issue. Lower vol");
    return true;
  }
  kTrace.Info("IsBTHeadsetConnected - 0x%x = dwState:0x%x & dwBT_HANDSFREE:0x%x",
              state & kHandsFree, state, kHandsFree);
  for (const DWORD bit : {kHandsFreeAudio, kOtherAudio}) {
    kTrace.Info("IsBTHeadsetConnected - 0x%x = dwState:0x%x & dwBT_HANDSFREE_AUDIO:0x%x",
                state & bit, state, bit);
  }
  if ((state & (kHandsFree | kHandsFreeAudio | kOtherAudio)) == 0) return false;
  kTrace.Info("IsBTHeadsetConnected - Headset active");
  return true;
}

bool IsUSBHeadsetConnected() {
  DWORD state = 0;
  if (Failed(ReadHardwareState(TEXT("Headset"), state)) || state == 0) return false;
  kTrace.Info("IsUSBHeadsetConnected - USB Headset active. reg_key:%d", state);
  return true;
}

DWORD HeadsetVolume() {
  DWORD word = 0;
  for (int attempt = 0; attempt < 2; ++attempt) {
    if (Succeeded(GetBeepsSysVolume(word))) return word;
  }
  return kVeryLowVolume;
}

// The speaker plays at the system's volume.
std::optional<DWORD> BeepVolume(std::optional<DWORD> system_volume) {
  if (!IsBTHeadsetConnected() && !IsUSBHeadsetConnected()) return system_volume;
  kTrace.Info("PlayDvlSynchronousBeep - HeadsetActive");
  return HeadsetVolume();
}

// The result is that of setting the volume.
HRESULT SetLevels(const Levels& found, std::optional<DWORD> volume) {
  HRESULT result = PALBEEPSetCurVolsGain(found.gain ? Codec::kSet : Codec::kLeave);
  if (Failed(result)) {
    kTrace.Error("PlayDvlSynchronousBeep - 0x%x=PALBEEPSetCurVolsGain()", result);
  }
  if (!found.volume || !volume) return S_OK;
  result = PALBEEPSetBeepsCurSysVol(*volume);
  if (Failed(result)) {
    kTrace.Error("PlayDvlSynchronousBeep - 0x%x=PALBEEPSetCurWaveSysVol(in:0x%x)", result, *volume);
  }
  return result;
}

void PlayAudioFile(const WCHAR* path, DWORD flags) {
  if (PlaySoundW(path, nullptr, flags) != FALSE) return;
  kTrace.Error("PlayAudioFile - 0x%x=PlaySound(%ls,0,0x%x), winerr:0x%x", FALSE, path, flags,
               GetLastError());
}

HRESULT StopAudioFile() {
  if (PlaySoundW(nullptr, nullptr, 0) != FALSE) return S_OK;
  const DWORD error = GetLastError();
  kTrace.Error("StopAudioFile - 0x%x=PlaySound(NULL,0,0), winerr:0x%x", FALSE, error);
  return HResultFromWin32(error);
}

void PlayTones(const WCHAR* path, int count, DWORD flags) {
  if (count <= 1) return PlayAudioFile(path, flags);
  for (int tone = 0; tone < count; ++tone) {
    PlayAudioFile(path, flags);
    Sleep(kPauseMs);
  }
}

// The result of reading the file's path. Nothing is played where the path is empty.
HRESULT PlayEvent(int count, const WCHAR* name, DWORD flags) {
  WCHAR path[kPathUnits];
  DWORD bytes = 0;
  const HRESULT result = PALRegGetString(HKEY_LOCAL_MACHINE, kBeeperPath, name, path, &bytes);
  if (Failed(result)) {
    kTrace.Error("PlayDvlSynchronousBeep - 0x%x=PALRegGetString(HKLM,%ls,%ls,*,*),winerr:0x%x",
                 result, kBeeperPath, name, GetLastError());
    return result;
  }
  if (path[0] != WCHAR{}) PlayTones(path, count, flags);
  return result;
}

}  // namespace

HRESULT PlayDvlSynchronousBeep(int count, const WCHAR* name, DWORD flags) {
  kTrace.Info("PlayDvlSynchronousBeep(%d,%ls,0x%x) - Entry", count, name, flags);
  const Levels found = ReadLevels();
  if (flags == kPlayThrough) {
    saved_volume.Update(found.volume);
    saved_gain.Update(found.gain);
  } else {
    saved_volume.Save(found.volume);
    saved_gain.Save(found.gain);
  }
  const std::optional<DWORD> volume = BeepVolume(found.volume);
  HRESULT result = SetLevels(found, volume);
  if (volume == DWORD{0}) {
    kTrace.Info("PlayDvlSynchronousBeep - Vol:0x%x, Wavefile ignored", *volume);
  } else {
    result = PlayEvent(count, name, flags);
  }
  if (flags == kPlayThrough) {
    RestoreGain(found.gain);
    if (!RestoreVolume(found.volume, "PlayDvlSynchronousBeep - Failed to restore volume")) {
      result = E_FAIL;
    }
  }
  kTrace.Info("0x%x=PlayDvlSynchronousBeep(%d,%ls,0x%x) - Exit", result, count, name, flags);
  return result;
}

HRESULT StopTagSearch() {
  HRESULT result = StopAudioFile();
  kTrace.Info("PALBEEPStopTagSearch - Restore cur wave vol and gain");
  RestoreGain(saved_gain.Get());
  saved_gain.Clear();
  if (RestoreVolume(saved_volume.Get(), "PALBEEPStopTagSearch - Failed to restore volume")) {
    saved_volume.Clear();
  } else {
    result = E_FAIL;
  }
  return result;
}

}  // namespace pal
