// A device with a whole beeper: levels, gains, indicators and a sound for every event.
#ifndef TESTS_SUPPORT_BEEPER_DEVICE_H_
#define TESTS_SUPPORT_BEEPER_DEVICE_H_

#include <string>
#include <vector>

#include "platform/sim/device.h"

inline constexpr const char* kBeeperKey = "HKLM\\Software\\Dravonel\\BeeperVol";
inline constexpr const char* kControlPanelKey = "HKCU\\ControlPanel\\Volume";
inline constexpr const char* kIndicatorKey = "HKLM\\SOFTWARE\\Dravonel\\PAL";
inline constexpr const char* kHardwareStateKey = "HKLM\\System\\State\\Hardware";

inline constexpr std::uint32_t kLevelWords[] = {0,          0x33333333, 0x66666666,
                                                0x99999999, 0xCCCCCCCC, 0xFFFFFFFF};

// Level n has the gain 10 n. The speaker stands at medium, the headset at very low; none is
// connected; the system's volume is 0x77777777 and its gain 5, which belong to no level. The sound
// of each event is "\<value name>.wav" and takes 100 ms. No scanner has an indicator.
void FurnishBeeper(sim::Device& device);

// The beeper's lines of the event log with their categories: of a failure where a line begins with
// '!', else of information. "*" stands for the lines of a refresh of such a device's levels.
std::vector<std::string> BeeperLog(const std::vector<std::string>& lines);

#endif  // TESTS_SUPPORT_BEEPER_DEVICE_H_
