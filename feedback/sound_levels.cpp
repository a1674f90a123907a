#include "feedback/sound_levels.h"

#include "feedback/beeper_registry.h"
#include "feedback/volume.h"
#include "frame/result.h"
#include "frame/trace.h"
#include "include/palbeep.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kBeeper};

constexpr DWORD kGainWithoutValue = 66;

constexpr UINT kSetGainMessage = 0x113;
constexpr UINT kGetGainMessage = 0x114;
constexpr uintptr_t kCodec = 2;

void PALBEEPSetCurGain(DWORD gain) {
  const MMRESULT error = waveInMessage(nullptr, kSetGainMessage, kCodec, gain);
  if (error == 0) return;
  kTrace.Error("PALBEEPSetcurGain - 0x%x=waveInMessage(NULL,*,*,%d), winerr:0x%x", error, gain,
               GetLastError());
}

}  // namespace

HRESULT PALBEEPSetCurVolsGain(Codec codec) {
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
  if (codec == Codec::kSet) PALBEEPSetCurGain(gain);
  return S_OK;
}

HRESULT GetBeepsSysVolume(DWORD& word) {
  return ReadBeeperNumber(kVolumeRows[kHeadset].volume_name, word);
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

HRESULT PALBEEPGetCurGain(DWORD& gain) {
  DWORD found = 0;
  const MMRESULT error =
      waveInMessage(nullptr, kGetGainMessage, kCodec, reinterpret_cast<uintptr_t>(&found));
  // The line shows the message that sets the gain; readers of the log know it so.
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

void PALBEEPRestoreGain(DWORD gain) {
  kTrace.Info("PALBEEPRestoreWaveVol(in:%d) - Entry", gain);
  waveInMessage(nullptr, kSetGainMessage, kCodec, gain);
  kTrace.Info("0x%x=PALBEEPRestoreGain(in:%d) - Exit", S_OK, gain);
}

}  // namespace pal
