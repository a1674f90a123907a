// The beeper's levels: which there are, which is set, and how loud and with what gain each sounds.
#include "feedback/volume.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <iterator>

#include "frame/registry.h"
#include "frame/result.h"
#include "frame/trace.h"
#include "include/palbeep.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kBeeper};

// Below HKEY_CURRENT_USER: the volume that the shell shows.
constexpr const WCHAR* kControlPanelPath = TEXT("ControlPanel\\Volume");
constexpr const WCHAR* kControlPanelValue = TEXT("Volume");

// A row is one volume index. The first six are the levels; the others say which level is set, and
// which is set at first.
struct VolumeRow {
  DWORD level;
  DWORD initial_word;
  const WCHAR* volume_name;
  const WCHAR* gain_name;
  const WCHAR* name_in_failure;  // of the line that tells of a failed refresh
};
constexpr auto kRows = std::to_array<VolumeRow>({
    {0, 0x00000000, TEXT("Off"), TEXT("OffGain"), TEXT("Off")},
    {1, kVeryLowVolume, TEXT("VeryLow"), TEXT("VeryLowGain"),
     TEXT("Off")},  // a slip that readers of the log know
    {2, 0x66666666, TEXT("Low"), TEXT("LowGain"), TEXT("Low")},
    {3, 0x99999999, TEXT("Med"), TEXT("MedGain"), TEXT("Med")},
    {4, 0xCCCCCCCC, TEXT("High"), TEXT("HighGain"), TEXT("High")},
    {5, 0xFFFFFFFF, TEXT("VeryHigh"), TEXT("VeryHighGain"), TEXT("VeryHigh")},
    {10, 0x00000000, TEXT("CurrentVol"), TEXT("CurGain"), nullptr},
    {11, 0x99999999, TEXT("DefaultVol"), TEXT("DefGain"), nullptr},
    {12, 0x00000000, TEXT("CurrentHeadset"), TEXT("CurHeadsetGain"), nullptr},
    {13, 0x66666666, TEXT("DefaultHeadset"), TEXT("DefaultHeadsetGain"), nullptr},
});
constexpr DWORD kLastRow = kRows.size() - 1;
constexpr DWORD kLevels = 6;
constexpr DWORD kLastLevel = kLevels - 1;
static_assert(std::ranges::all_of(kRows, [](const VolumeRow& row) {
  const auto index = static_cast<DWORD>(&row - kRows.data());
  return (row.level == index) == (index < kLevels) &&
         (row.name_in_failure != nullptr) == (index < kLevels);
}));

// The rows that hold a current level.
constexpr DWORD kSpeaker = PAL_VOLUME_INDEX_SPEAKER;
constexpr DWORD kHeadset = PAL_VOLUME_INDEX_HEADSET;

constexpr DWORD kFloor = PAL_VOLUME_LOW;  // a step down stops here and never silences a device

constexpr DWORD kMostGain = 100;
constexpr DWORD kGainWithoutValue = 66;

constexpr UINT kSetGainMessage = 0x113;
constexpr UINT kGetGainMessage = 0x114;
constexpr uintptr_t kCodec = 2;

// The words of the levels, as they were last read.
constinit std::array<std::atomic<DWORD>, kLevels> level_words{
    kRows[0].initial_word, kRows[1].initial_word, kRows[2].initial_word,
    kRows[3].initial_word, kRows[4].initial_word, kRows[5].initial_word};

DWORD WordOf(DWORD level) {
  return level_words[level].load(std::memory_order_relaxed);
}

HRESULT Read(const WCHAR* name, DWORD& number) {
  return PALRegGetDword(HKEY_LOCAL_MACHINE, kBeeperPath, name, &number);
}

HRESULT Write(const WCHAR* name, DWORD number) {
  return PALRegSetDword(HKEY_LOCAL_MACHINE, kBeeperPath, name, number);
}

void PALBEEPUpdateVolGainMap() {
  kTrace.Info("PALBEEPUpdateVolGainMap() - Entry");
  HRESULT result = S_OK;
  for (DWORD level = 0; level < kLevels; ++level) {
    const VolumeRow& row = kRows[level];
    DWORD word = 0;
    result = Read(row.volume_name, word);
    if (Succeeded(result)) {
      level_words[level].store(word, std::memory_order_relaxed);
      kTrace.Info("PALBEEPUpdateVolGainMap - Updated: %ls,0x%x ", row.volume_name, word);
    } else {
      kTrace.Error("PALBEEPUpdateVolGainMap - Failed to update %ls ", row.name_in_failure);
    }
  }
  kTrace.Info("0x%x=PALBEEPUpdateVolGainMap() - Exit", result);
}

// `type` is the row that is set, `volume` the row whose word it gets.
HRESULT SetVolume(DWORD type, DWORD volume) {
  if (volume > kLastRow) return E_FAIL;
  DWORD word = 0;
  HRESULT result = E_FAIL;
  if (Succeeded(Read(kRows[volume].volume_name, word))) {
    kTrace.Info("SetVolume - Applying sys vol:0x%x to %ls", word, kRows[type].volume_name);
    result = Write(kRows[type].volume_name, word);
  }
  PALBEEPUpdateVolGainMap();
  return result;
}

// Of levels that share a word, the lowest. kLevels where no level has it.
DWORD LevelWith(DWORD word) {
  DWORD level = 0;
  while (level < kLevels && WordOf(level) != word) ++level;
  return level;
}

HRESULT GetVolume(DWORD type, DWORD& level) {
  PALBEEPUpdateVolGainMap();
  DWORD word = 0;
  if (Failed(Read(kRows[type].volume_name, word))) {
    kTrace.Error("GetVolume(%d,*) - Failed to acquire sys vol", type);
    return E_FAIL;
  }
  const DWORD found = LevelWith(word);
  if (found == kLevels) return E_FAIL;
  // A level whose word has changed is so carried into what is set; a headset keeps its own.
  if (type == kSpeaker) static_cast<void>(SetVolume(kSpeaker, found));
  level = kRows[found].level;
  return S_OK;
}

// A step of one level, and its lines.
struct Step {
  using Number = TraceSource::Format<DWORD>;

  bool (*stays_at)(DWORD level);
  DWORD change;  // wraps around, so that it goes down too
  TraceSource::Format<HRESULT, DWORD> get_failed;
  Number current;
  Number invalid;
  Number next;
  TraceSource::Format<HRESULT> set_failed;
};
constexpr Step kDecrement{
    [](DWORD level) { return level == kFloor || level == 0; },
    static_cast<DWORD>(-1),
    "DecrementBeepVolume - ERROR 0x%x=GetVolume(in_type:%d)",
    "DecrementBeepVolume - cur_vol: 0x%x",
    "DecrementBeepVolume - ERROR Invalid beeper vol: 0x%x",
    "DecrementBeepVolume - new_vol: 0x%x",
    "DecrementBeepVolume - ERROR 0x%x=SetVolume()",
};
constexpr Step kIncrement{
    [](DWORD level) { return level == kLastLevel; },          1,
    "IncrementBeepVolume - ERROR 0x%x=GetVolume(in_type:%d)", "IncrementBeepVolume - cur_vol: 0x%x",
    "IncrementBeepVolume - ERROR Invalid beeper vol: 0x%x",   "IncrementBeepVolume - new_vol: 0x%x",
    "IncrementBeepVolume - ERROR 0x%x=SetVolume()",
};

HRESULT StepBeepVolume(const Step& step, DWORD type) {
  DWORD level = 0;
  HRESULT result = GetVolume(type, level);
  if (Failed(result)) {
    kTrace.Error(step.get_failed, result, type);
    return result;
  }
  kTrace.Info(step.current, level);
  if (level > kLastLevel) {
    kTrace.Error(step.invalid, level);
    return E_FAIL;
  }
  if (step.stays_at(level)) return S_OK;
  const DWORD next = level + step.change;
  kTrace.Info(step.next, next);
  result = SetVolume(type, next);
  if (Failed(result)) kTrace.Error(step.set_failed, result);
  return result;
}

// The system's volume becomes that of a level, and the shell shows it.
HRESULT SetCPLVol(DWORD level) {
  const DWORD word = WordOf(level);
  constexpr TraceSource::Format<MMRESULT, DWORD, DWORD, DWORD> kSet =
      "0x%x=waveOutSetVolume(0x%x->0x%x) winerr:0x%x";
  const MMRESULT error = waveOutSetVolume(nullptr, word);
  if (error != 0) {
    kTrace.Error(kSet, error, level, word, GetLastError());
    return E_FAIL;
  }
  kTrace.Info(kSet, error, level, word, GetLastError());

  kTrace.Info(" Checking current CPL Volume  ");
  DWORD shown = 0;
  HRESULT result = PALRegGetDword(HKEY_CURRENT_USER, kControlPanelPath, kControlPanelValue, &shown);
  if (Failed(result)) {
    kTrace.Error("SetCPLVOl - Error reading from registry:(0x%x)", result);
    return E_FAIL;
  }
  kTrace.Info("SetCPLVol - Checking current CPL Volume ");
  if (shown == word) return result;
  result = PALRegSetDword(HKEY_CURRENT_USER, kControlPanelPath, kControlPanelValue, word);
  if (Failed(result)) {
    kTrace.Error("SetCPLVol - ERROR writing to CPL  Vol registry:(0x%x)", result);
  } else {
    kTrace.Info("SetCPLVol - Current CPL Vol is updated from Dravonel Settings Volume");
  }
  return result;
}

HRESULT SetGain(DWORD index, DWORD gain) {
  if (gain > kMostGain || index > kLastRow) {
    kTrace.Error("SetGain(%d(%d-%d),%d(%d-%d)) - Invalid input", index, 0, kLastRow, gain, 0,
                 kMostGain);
    return E_FAIL;
  }
  kTrace.Info("SetGain(%ls,%d) - Entry", kRows[index].gain_name, gain);
  HRESULT result = Write(kRows[index].gain_name, gain);
  if (Failed(result)) result = E_FAIL;
  kTrace.Info("0x%x=SetGain(%d,%d) - Exit", result, index, gain);
  return result;
}

HRESULT GetSpecificVolGain(DWORD index, DWORD* gain) {
  if (gain == nullptr) {
    kTrace.Error("GetSpecificVolGain() - Input invalid");
    return E_FAIL;
  }
  if (index > kLastRow) return E_FAIL;
  const HRESULT result = Read(kRows[index].gain_name, *gain);
  return Failed(result) ? E_FAIL : result;
}

// Always S_OK: a driver that refuses the gain is no reason not to beep.
HRESULT PALBEEPSetCurGain(DWORD gain) {
  const MMRESULT error = waveInMessage(nullptr, kSetGainMessage, kCodec, gain);
  if (error != 0) {
    kTrace.Error("PALBEEPSetcurGain - 0x%x=waveInMessage(NULL,*,*,%d), winerr:0x%x", error, gain,
                 GetLastError());
  }
  return S_OK;
}

}  // namespace

HRESULT PALBEEPSetCurVolsGain() {
  DWORD level = 0;
  const HRESULT result = GetVolume(kSpeaker, level);
  if (Failed(result)) {
    kTrace.Error("PALBEEPSetCurVolsGain - Failed to acquire cur vol");
    return result;
  }
  DWORD gain = kGainWithoutValue;
  if (Failed(PALBEEPGetSpeakerGain(level, &gain))) {
    kTrace.Error("PALBEEPSetCurVolsGain - PALBEEPGetSpeakerGain failed. Using current:%d", gain);
  }
  return PALBEEPSetCurGain(gain);
}

HRESULT GetBeepsSysVolume(DWORD& word) {
  return Read(kRows[kHeadset].volume_name, word);
}

HRESULT PALBEEPGetCurSysVol(DWORD& word) {
  DWORD found = 0;
  const MMRESULT error = waveOutGetVolume(nullptr, &found);
  if (error != 0) {
    kTrace.Error("PALBEEPGetCurSysVol - 0x%x=waveOutGetVolume(NULL,*),winerr:0x%x", error,
                 GetLastError());
    return E_FAIL;
  }
  word = found;
  return S_OK;
}

HRESULT PALBEEPSetBeepsCurSysVol(DWORD word) {
  return waveOutSetVolume(nullptr, word) == 0 ? S_OK : E_FAIL;
}

HRESULT PALBEEPRestoreVol(DWORD word) {
  return waveOutSetVolume(nullptr, word) == 0 ? S_OK : E_FAIL;
}

HRESULT PALBEEPGetCurGain(DWORD& gain) {
  DWORD found = 0;
  const MMRESULT error =
      waveInMessage(nullptr, kGetGainMessage, kCodec, reinterpret_cast<uintptr_t>(&found));
  // The line shows the message that sets the gain, as it always has.
  constexpr TraceSource::Format<MMRESULT, UINT, DWORD, DWORD, DWORD> kGot =
      "PALBEEPGetCurGain - 0x%x=waveInMessage(NULL,0x%x,0x%x,out:%d). winerr:0x%x";
  if (error != 0) {
    kTrace.Error(kGot, error, kSetGainMessage, DWORD{kCodec}, found, GetLastError());
    return E_FAIL;
  }
  kTrace.Info(kGot, error, kSetGainMessage, DWORD{kCodec}, found, GetLastError());
  gain = found;
  return S_OK;
}

HRESULT PALBEEPRestoreGain(DWORD gain) {
  kTrace.Info("PALBEEPRestoreWaveVol(in:%d) - Entry", gain);
  waveInMessage(nullptr, kSetGainMessage, kCodec, gain);
  kTrace.Info("0x%x=PALBEEPRestoreGain(in:%d) - Exit", S_OK, gain);
  return S_OK;
}

}  // namespace pal

HRESULT PALAPI PALBEEPSetVolume(DWORD setting) {
  if (setting <= pal::kLastLevel) {
    static_cast<void>(pal::SetVolume(pal::kSpeaker, setting));
    return pal::SetCPLVol(setting);
  }
  if (setting == PAL_VOLUME_STEP_DOWN) return pal::StepBeepVolume(pal::kDecrement, pal::kSpeaker);
  if (setting == PAL_VOLUME_STEP_UP) return pal::StepBeepVolume(pal::kIncrement, pal::kSpeaker);
  pal::kTrace.Error("PALBEEPSetVolume - ERROR Invalid input setting: 0x%x", setting);
  return E_FAIL;
}

HRESULT PALAPI PALBEEPGetVolume(DWORD* level) {
  if (level == nullptr) return E_FAIL;
  pal::kTrace.Info("PALBEEPGetVolume(*) - Entry");
  const HRESULT result = pal::GetVolume(pal::kSpeaker, *level);
  pal::kTrace.Info("0x%x=PALBEEPGetVolume(*) - Exit", result);
  return result;
}

HRESULT PALAPI PALBEEPSetHeadsetBeeperVolume(DWORD volume_index) {
  pal::kTrace.Info("PALBEEPSetHeadsetBeeperVolume(in:%d) - Entry", volume_index);
  const HRESULT result = pal::SetVolume(pal::kHeadset, volume_index);
  pal::kTrace.Info("0x%x=PALBEEPSetHeadsetBeeperVolume(in:%d) - Exit", result, volume_index);
  return result;
}

HRESULT PALAPI PALBEEPGetHeadsetBeeperVolume(DWORD* level) {
  if (level == nullptr) return E_FAIL;
  pal::kTrace.Info("PALBEEPGetHeadsetBeeperVolume(*) - Entry");
  const HRESULT result = pal::GetVolume(pal::kHeadset, *level);
  pal::kTrace.Info("0x%x=PALBEEPGetHeadsetBeeperVolume(*) - Exit", result);
  return result;
}

HRESULT PALAPI PALBEEPSetSpeakerGain(DWORD in_vol_index, DWORD in_gain) {
  pal::kTrace.Info("PALBEEPSetSpeakerGain(in:%d,in:%d) - Entry", in_vol_index, in_gain);
  const HRESULT result = pal::SetGain(in_vol_index, in_gain);
  pal::kTrace.Info("0x%x=PALBEEPSetSpeakerGain(in:%d,in:%d) - Exit", result, in_vol_index, in_gain);
  return result;
}

HRESULT PALAPI PALBEEPGetSpeakerGain(DWORD in_vol_index, DWORD* gain) {
  pal::kTrace.Info("PALBEEPGetSpeakerGain(in:%d,*) - Entry", in_vol_index);
  const HRESULT result = pal::GetSpecificVolGain(in_vol_index, gain);
  pal::kTrace.Info("0x%x=PALBEEPGetSpeakerGain(in:%d,*) - Exit", result, in_vol_index);
  return result;
}

HRESULT PALAPI PALBEEPSetHeadsetGain(DWORD gain) {
  pal::kTrace.Info("PALBEEPSetHeadsetGain(in:%d) - Entry", gain);
  const HRESULT result = pal::SetGain(pal::kHeadset, gain);
  // Names the speaker's function, as it always has.
  pal::kTrace.Info("0x%x=PALBEEPSetSpeakerGain(in:%d) - Exit", result, gain);
  return result;
}

HRESULT PALAPI PALBEEPGetHeadsetGain(DWORD* gain) {
  pal::kTrace.Info("PALBEEPGetHeadsetGain(*) - Entry");
  const HRESULT result = pal::GetSpecificVolGain(pal::kHeadset, gain);
  pal::kTrace.Info("0x%x=PALBEEPGetHeadsetGain(*) - Exit", result);
  return result;
}
