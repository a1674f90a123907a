// The beeper's registry key: a volume and a gain for each volume index, and the sounds' files.
#ifndef FEEDBACK_BEEPER_REGISTRY_H_
#define FEEDBACK_BEEPER_REGISTRY_H_

#include <array>

#include "frame/registry.h"
#include "include/palbeep.h"
#include "platform/wince.h"

namespace pal {

// Below HKEY_LOCAL_MACHINE.
inline constexpr const WCHAR* kBeeperPath = TEXT("Software\\Dravonel\\BeeperVol");

struct VolumeRow {
  const WCHAR* volume_name;
  const WCHAR* gain_name;
};

// By volume index. The first six are the levels; the others hold what is set and the defaults.
inline constexpr auto kVolumeRows = std::to_array<VolumeRow>({
    {TEXT("Off"), TEXT("OffGain")},
    {TEXT("VeryLow"), TEXT("VeryLowGain")},
    {TEXT("Low"), TEXT("LowGain")},
    {TEXT("Med"), TEXT("MedGain")},
    {TEXT("High"), TEXT("HighGain")},
    {TEXT("VeryHigh"), TEXT("VeryHighGain")},
    {TEXT("CurrentVol"), TEXT("CurGain")},
    {TEXT("DefaultVol"), TEXT("DefGain")},
    {TEXT("CurrentHeadset"), TEXT("CurHeadsetGain")},
    {TEXT("DefaultHeadset"), TEXT("DefaultHeadsetGain")},
});
inline constexpr DWORD kLastRow = kVolumeRows.size() - 1;
inline constexpr DWORD kSpeaker = PAL_VOLUME_INDEX_SPEAKER;
inline constexpr DWORD kHeadset = PAL_VOLUME_INDEX_HEADSET;

[[nodiscard]] inline HRESULT ReadBeeperNumber(const WCHAR* name, DWORD& number) {
  return PALRegGetDword(HKEY_LOCAL_MACHINE, kBeeperPath, name, &number);
}
[[nodiscard]] inline HRESULT WriteBeeperNumber(const WCHAR* name, DWORD number) {
  return PALRegSetDword(HKEY_LOCAL_MACHINE, kBeeperPath, name, number);
}

}  // namespace pal

#endif  // FEEDBACK_BEEPER_REGISTRY_H_
