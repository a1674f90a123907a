// The beeper's levels: how loud each is, and which one is set.
#include "feedback/volume.h"

#include <array>
#include <atomic>

#include "feedback/beeper_registry.h"
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

// The words of the levels: built in, and then as they were last read.
constinit std::array<std::atomic<DWORD>, 6> level_words{0x00000000, kVeryLowVolume, 0x66666666,
                                                        0x99999999, 0xCCCCCCCC,     0xFFFFFFFF};
constexpr DWORD kLevels = level_words.size();
static_assert(kLevels == PAL_VOLUME_VERY_HIGH + 1 && kLevels == kSpeaker);

DWORD WordOf(DWORD level) {
  return level_words[level].load(std::memory_order_relaxed);
}

void PALBEEPUpdateVolGainMap() {
  kTrace.Info("PALBEEPUpdateVolGainMap() - Entry");
  HRESULT result = S_OK;
  for (DWORD level = 0; level < kLevels; ++level) {
    const WCHAR* const name = kVolumeRows[level].volume_name;
    DWORD word = 0;
    result = ReadBeeperNumber(name, word);
    if (Succeeded(result)) {
      level_words[level].store(word, std::memory_order_relaxed);
      kTrace.Info("PALBEEPUpdateVolGainMap - Updated: %ls,0x%x ", name, word);
    } else {
      // The line for VeryLow names "Off"; readers of the log know it so.
      kTrace.Error("PALBEEPUpdateVolGainMap - Failed to update %ls ",
                   level == PAL_VOLUME_VERY_LOW ? kVolumeRows[0].volume_name : name);
    }
  }
  kTrace.Info("0x%x=PALBEEPUpdateVolGainMap() - Exit", result);
}

// `type` is the row that is set, `volume` the row whose word it gets.
HRESULT SetVolume(DWORD type, DWORD volume) {
  if (volume > kLastRow) return E_FAIL;
  DWORD word = 0;
  HRESULT result = E_FAIL;
  if (Succeeded(ReadBeeperNumber(kVolumeRows[volume].volume_name, word))) {
    kTrace.Info("SetVolume - Applying sys vol:0x%x to %ls", word, kVolumeRows[type].volume_name);
    result = WriteBeeperNumber(kVolumeRows[type].volume_name, word);
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

enum class Direction { kDown, kUp };

// The same level where there is no step further. Down stops at Low, so that a step never silences a
// device; from VeryLow it goes to Off.
constexpr DWORD Next(DWORD level, Direction direction) {
  if (direction == Direction::kUp) return level == PAL_VOLUME_VERY_HIGH ? level : level + 1;
  return level == PAL_VOLUME_LOW || level == 0 ? level : level - 1;
}

// A step of one level, and its lines. GetVolume gives levels only, so that these two are never
// written: "DecrementBeepVolume - ERROR Invalid beeper vol: 0x%x" and the same of the increment.
struct Step {
  Direction direction;
  TraceSource::Format<HRESULT, DWORD> get_failed;
  TraceSource::Format<DWORD> current;
  TraceSource::Format<DWORD> next;
  TraceSource::Format<HRESULT> set_failed;
};
constexpr Step kDecrement{
    Direction::kDown,
    "DecrementBeepVolume - ERROR 0x%x=GetVolume(in_type:%d)",
    "DecrementBeepVolume - cur_vol: 0x%x",
    "DecrementBeepVolume - new_vol: 0x%x",
    "DecrementBeepVolume - ERROR 0x%x=SetVolume()",
};
constexpr Step kIncrement{
    Direction::kUp,
    "IncrementBeepVolume - ERROR 0x%x=GetVolume(in_type:%d)",
    "IncrementBeepVolume - cur_vol: 0x%x",
    "IncrementBeepVolume - new_vol: 0x%x",
    "IncrementBeepVolume - ERROR 0x%x=SetVolume()",
};

HRESULT StepBeepVolume(const Step& step) {
  DWORD level = 0;
  HRESULT result = GetVolume(kSpeaker, level);
  if (Failed(result)) {
    kTrace.Error(step.get_failed, result, kSpeaker);
    return result;
  }
  kTrace.Info(step.current, level);
  const DWORD next = Next(level, step.direction);
  if (next == level) return S_OK;
  kTrace.Info(step.next, next);
  result = SetVolume(kSpeaker, next);
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

}  // namespace

HRESULT GetVolume(DWORD type, DWORD& level) {
  PALBEEPUpdateVolGainMap();
  DWORD word = 0;
  if (Failed(ReadBeeperNumber(kVolumeRows[type].volume_name, word))) {
    kTrace.Error("GetVolume(%d,*) - Failed to acquire sys vol", type);
    return E_FAIL;
  }
  const DWORD found = LevelWith(word);
  if (found == kLevels) return E_FAIL;
  if (type == kSpeaker) static_cast<void>(SetVolume(kSpeaker, found));
  level = found;
  return S_OK;
}

}  // namespace pal

HRESULT PALAPI PALBEEPSetVolume(DWORD setting) {
  if (setting <= PAL_VOLUME_VERY_HIGH) {
    static_cast<void>(pal::SetVolume(pal::kSpeaker, setting));
    return pal::SetCPLVol(setting);
  }
  if (setting == PAL_VOLUME_STEP_DOWN) return pal::StepBeepVolume(pal::kDecrement);
  if (setting == PAL_VOLUME_STEP_UP) return pal::StepBeepVolume(pal::kIncrement);
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
