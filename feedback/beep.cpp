// The beeper: what is heard and felt of a read, a change of the configuration, a key, a tag search.
#include <array>
#include <atomic>
#include <optional>

#include "feedback/good_read_indicator.h"
#include "feedback/volume.h"
#include "frame/mutex.h"
#include "frame/registry.h"
#include "frame/result.h"
#include "frame/trace.h"
#include "include/palbeep.h"
#include "include/palsysinfo.h"
#include "include/palvib.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kBeeper};

constexpr const WCHAR* kHardwareStatePath = TEXT("System\\State\\Hardware");

// The values that name the sounds' files.
constexpr const WCHAR* kGoodRead = TEXT("GoodRead");
constexpr const WCHAR* kBadRead = TEXT("BadRead");
constexpr const WCHAR* kConfigChange = TEXT("ConfigChange");
constexpr const WCHAR* kConfigChangeError = TEXT("ConfigChangeError");
constexpr const WCHAR* kKeyClick = TEXT("KeyClick");
constexpr const WCHAR* kTagSearch = TEXT("TagSearch");

constexpr DWORD kPlayThrough = SND_FILENAME;
constexpr DWORD kLoop = SND_FILENAME | SND_LOOP | SND_ASYNC;

constexpr size_t kPathUnits = 260;
constexpr DWORD kPauseMs = 50;

constexpr int kBadReadPulses = 4;  // behind the first
constexpr DWORD kPulsePauseMs = 100;

// What an indicator value asks for. Any number behind these asks for nothing.
struct Indication {
  bool vibrates;
  int tones;
};
constexpr auto kIndications = std::to_array<Indication>(
    {{false, 0}, {false, 1}, {false, 2}, {true, 0}, {true, 1}, {true, 2}});

Indication IndicationOf(DWORD value) {
  return value < kIndications.size() ? kIndications[value] : Indication{false, 0};
}

constinit std::atomic<HANDLE> beep_mutex{nullptr};

// The device's model, as it was at the start; empty where it could not be told.
constinit WCHAR device_model[256] = {};

// What StopTagSearch puts back. A tag search that is not running has nothing saved.
//
// It is used under the mutex, but for a beep whose wait timed out. Such a one sees no level that
// was never saved: the device has one processor, so that other threads see the stores in the order
// in which the compiler leaves them. It may miss a level that is saved just then, or see another
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
  // At the start of any other beep: one that comes during a tag search takes its place.
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

// The system's levels. One that cannot be read is left alone: it could not be put back.
struct Levels {
  std::optional<DWORD> volume;
  std::optional<DWORD> gain;
};

Levels ReadLevels() {
  Levels levels;
  DWORD level = 0;
  HRESULT result = PALBEEPGetCurSysVol(level);
  if (Succeeded(result)) {
    levels.volume = level;
  } else {
    kTrace.Error("PlayDvlSynchronousBeep - 0x%x=PALBEEPGetCurSysVol()", result);
  }
  result = PALBEEPGetCurGain(level);
  if (Succeeded(result)) {
    levels.gain = level;
  } else {
    kTrace.Error("PlayDvlSynchronousBeep - 0x%x=PALBEEPGetCurGain()", result);
  }
  return levels;
}

// True where there is no level to be put back, or it was. False, with its line, where that failed.
bool Restore(std::optional<DWORD> level, HRESULT (*restore)(DWORD level),
             TraceSource::Format<> failed) {
  if (!level || Succeeded(restore(*level))) return true;
  kTrace.Error(failed);
  return false;
}

bool RestoreGain(std::optional<DWORD> gain, TraceSource::Format<> failed) {
  return Restore(gain, &PALBEEPRestoreGain, failed);
}

bool RestoreVolume(std::optional<DWORD> volume, TraceSource::Format<> failed) {
  return Restore(volume, &PALBEEPRestoreVol, failed);
}

HRESULT ReadHardwareState(const WCHAR* name, DWORD& state) {
  return PALRegGetDword(HKEY_LOCAL_MACHINE, kHardwareStatePath, name, &state);
}

// Where it cannot be told, yes: the headset's volume is the lower one.
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

// The speaker sounds at the system's volume, whatever that is.
std::optional<DWORD> BeepVolume(std::optional<DWORD> system_volume) {
  if (!IsBTHeadsetConnected() && !IsUSBHeadsetConnected()) return system_volume;
  kTrace.Info("PlayDvlSynchronousBeep - HeadsetActive");
  return HeadsetVolume();
}

// The result is that of the volume.
HRESULT SetLevels(const Levels& found, std::optional<DWORD> volume) {
  if (found.gain) {
    const HRESULT result = PALBEEPSetCurVolsGain();
    if (Failed(result)) {
      kTrace.Error("PlayDvlSynchronousBeep - 0x%x=PALBEEPSetCurVolsGain()", result);
    }
  }
  if (!found.volume || !volume) return S_OK;
  const HRESULT result = PALBEEPSetBeepsCurSysVol(*volume);
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

// The result of reading the file's path, which may be empty: then nothing is to be heard.
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

// A sound that is played through leaves volume and gain as it found them. One that loops leaves its
// own in force. After a wait that timed out this runs beside another beep; it still puts back what
// it found itself.
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
    if (!RestoreGain(found.gain, "PlayDvlSynchronousBeep - Failed to restore gain")) {
      result = E_FAIL;
    }
    if (!RestoreVolume(found.volume, "PlayDvlSynchronousBeep - Failed to restore volume")) {
      result = E_FAIL;
    }
  }
  kTrace.Info("0x%x=PlayDvlSynchronousBeep(%d,%ls,0x%x) - Exit", result, count, name, flags);
  return result;
}

// What every beep does around its own work, with its lines and their arguments.
template <typename Work, typename... Arguments>
HRESULT WithBeeper(TraceSource::Format<Arguments...> entry,
                   TraceSource::Format<HRESULT, Arguments...> exit, Work work,
                   Arguments... arguments) {
  kTrace.Info(entry, arguments...);
  MutexGuard guard(Facility::kBeeper, beep_mutex.load(std::memory_order_relaxed), kMutexTimeoutMs);
  if (Failed(guard.wait_result())) return guard.wait_result();
  const HRESULT result = work();
  guard.Release();
  kTrace.Info(exit, result, arguments...);
  return result;
}

HRESULT GoodRead(DWORD scan_type) {
  DWORD value = 0;
  HRESULT result = ReadGoodReadIndicator(scan_type, value);
  const Indication indication = IndicationOf(value);
  if (indication.vibrates) {
    const HRESULT vibration = PALVIBVibrate(scan_type);
    if (Failed(vibration)) {
      kTrace.Error("GoodReadEx - ERROR. Vibrate hr: 0x%x", vibration);
      result = vibration;
    }
  }
  if (indication.tones == 0) return result;
  return PlayDvlSynchronousBeep(indication.tones, kGoodRead, kPlayThrough);
}

// Five pulses. Without the first there are no others.
HRESULT VibrateForBadRead() {
  HRESULT result = PALVIBVibrate(0);
  if (Failed(result)) {
    kTrace.Error("PALBEEPBadRead - ERROR. Vibrate hr: 0x%x", result);
    return result;
  }
  for (int pulse = 0; pulse < kBadReadPulses; ++pulse) {
    result = PALVIBVibrate(kPulsePauseMs);
    Sleep(kPulsePauseMs);
  }
  return result;
}

// Whatever scanner failed, the internal one's indicator says what is heard.
HRESULT BadRead() {
  DWORD value = 0;
  HRESULT result = ReadGoodReadIndicator(kInternalScanner, value);
  const Indication indication = IndicationOf(value);
  if (indication.vibrates) result = VibrateForBadRead();
  if (indication.tones == 0) return result;
  return PlayDvlSynchronousBeep(1, kBadRead, kPlayThrough);
}

HRESULT StopTagSearch() {
  HRESULT result = StopAudioFile();
  kTrace.Info("PALBEEPStopTagSearch - Restore cur wave vol and gain");
  // What fails stays saved, for the next stop.
  if (RestoreGain(saved_gain.Get(), "PALBEEPStopTagSearch - Failed to restore gain")) {
    saved_gain.Clear();
  } else {
    result = E_FAIL;
  }
  if (RestoreVolume(saved_volume.Get(), "PALBEEPStopTagSearch - Failed to restore volume")) {
    saved_volume.Clear();
  } else {
    result = E_FAIL;
  }
  return result;
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALBEEPInit() {
  if (pal::beep_mutex.load(std::memory_order_relaxed) == nullptr) {
    HANDLE mutex = CreateMutexW(nullptr, FALSE, TEXT("DVLORQPAL_BEEP_MUTEX"));
    if (mutex == nullptr) {
      pal::kTrace.Error("PALBEEPInit - Error creating mutex. winerr:0x%x", GetLastError());
    }
    pal::beep_mutex.store(mutex, std::memory_order_relaxed);
  }
  WCHAR model[sizeof(pal::device_model) / sizeof(WCHAR)] = {};
  DWORD bytes = sizeof(model);
  if (pal::Failed(PALSysinfo_GetModelExW(model, &bytes))) model[0] = WCHAR{};
  memcpy(pal::device_model, model, sizeof(pal::device_model));
  return S_OK;
}

HRESULT PALAPI PALBEEPTerm() {
  HANDLE mutex = pal::beep_mutex.load(std::memory_order_relaxed);
  if (pal::Failed(pal::PALWaitForMutex(pal::Facility::kBeeper, mutex, pal::kMutexTimeoutMs))) {
    pal::kTrace.Error("PALBEEPTerm - Mutex wait failed. winerr:0x%x", GetLastError());
  }
  if (mutex == nullptr) return S_OK;
  pal::PALReleaseMutexIfValid(pal::Facility::kBeeper, mutex);
  pal::beep_mutex.store(nullptr, std::memory_order_relaxed);
  pal::UniqueMutex(mutex).Reset();
  return S_OK;
}

HRESULT PALAPI PALBEEPGoodReadEx(DWORD in_scan_type) {
  if (in_scan_type >= pal::kIndicatorNames.size()) return E_INVALIDARG;
  return pal::WithBeeper<>(
      "PALBEEPGoodReadEx(in_scan_type:%d) - Entry",
      "0x%x=PALBEEPGoodReadEx(in_scan_type:%d) - Exit",
      [in_scan_type] { return pal::GoodRead(in_scan_type); }, in_scan_type);
}

HRESULT PALAPI PALBEEPBadRead() {
  return pal::WithBeeper("PALBEEPBadRead() - Entry", "0x%x=PALBEEPBadRead() - Exit", &pal::BadRead);
}

HRESULT PALAPI PALBEEPChangeConfig() {
  return pal::WithBeeper("PALBEEPChangeConfig() - Entry", "0x%x=PALBEEPChangeConfig() - Exit", [] {
    return pal::PlayDvlSynchronousBeep(1, pal::kConfigChange, pal::kPlayThrough);
  });
}

HRESULT PALAPI PALBEEPChangeConfigError() {
  return pal::WithBeeper(
      "PALBEEPChangeConfigError() - Entry", "0x%x=PALBEEPChangeConfigError() - Exit",
      [] { return pal::PlayDvlSynchronousBeep(1, pal::kConfigChangeError, pal::kPlayThrough); });
}

// Its last line says "Entry", as it always has.
HRESULT PALAPI PALBEEPKeyClick() {
  return pal::WithBeeper("PALBEEPKeyClick() - Entry", "0x%x=PALBEEPKeyClick() - Entry", [] {
    return pal::PlayDvlSynchronousBeep(1, pal::kKeyClick, pal::kPlayThrough);
  });
}

HRESULT PALAPI PALBEEPStartTagSearch() {
  return pal::WithBeeper(
      "PALBEEPStartTagSearch() - Entry", "0x%x=PALBEEPStartTagSearch() - Exit",
      [] { return pal::PlayDvlSynchronousBeep(1, pal::kTagSearch, pal::kLoop); });
}

HRESULT PALAPI PALBEEPStopTagSearch() {
  return pal::WithBeeper("PALBEEPStopTagSearch() - Entry", "0x%x=PALBEEPStopTagSearch() - Exit",
                         &pal::StopTagSearch);
}
