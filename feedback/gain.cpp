// The gains of the volume indexes, as they are stored.
#include "feedback/beeper_registry.h"
#include "frame/result.h"
#include "frame/trace.h"
#include "include/palbeep.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kBeeper};

constexpr DWORD kMostGain = 100;

HRESULT SetGain(DWORD index, DWORD gain) {
  if (gain > kMostGain || index > kLastRow) {
    kTrace.Error("SetGain(%d(%d-%d),%d(%d-%d)) - Invalid input", index, 0, kLastRow, gain, 0,
                 kMostGain);
    return E_FAIL;
  }
  kTrace.Info("SetGain(%ls,%d) - Entry", kVolumeRows[index].gain_name, gain);
  HRESULT result = WriteBeeperNumber(kVolumeRows[index].gain_name, gain);
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
  const HRESULT result = ReadBeeperNumber(kVolumeRows[index].gain_name, *gain);
  return Failed(result) ? E_FAIL : result;
}

}  // namespace
}  // namespace pal

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
  // The line names the speaker's function; readers of the log know it so.
  pal::kTrace.Info("0x%x=PALBEEPSetSpeakerGain(in:%d) - Exit", result, gain);
  return result;
}

HRESULT PALAPI PALBEEPGetHeadsetGain(DWORD* gain) {
  pal::kTrace.Info("PALBEEPGetHeadsetGain(*) - Entry");
  const HRESULT result = pal::GetSpecificVolGain(pal::kHeadset, gain);
  pal::kTrace.Info("0x%x=PALBEEPGetHeadsetGain(*) - Exit", result);
  return result;
}
