#include "tests/support/beeper_device.h"

#include <iterator>

#include "platform/sim/exports.h"
#include "platform/sim/hardware/hardware.h"
#include "tests/support/wave_file.h"

void FurnishBeeper(sim::Device& device) {
  constexpr const char* kLevels[] = {"Off", "VeryLow", "Low", "Med", "High", "VeryHigh"};
  sim::Registry& registry = device.registry();
  for (std::uint32_t level = 0; level < std::size(kLevels); ++level) {
    registry.SetDword(kBeeperKey, kLevels[level], kLevelWords[level]);
    registry.SetDword(kBeeperKey, std::string(kLevels[level]) + "Gain", 10 * level);
  }
  registry.SetDword(kBeeperKey, "CurrentVol", kLevelWords[3]);
  registry.SetDword(kBeeperKey, "CurrentHeadset", kLevelWords[1]);
  registry.SetDword(kControlPanelKey, "Volume", 0x77777777);
  registry.SetDword(kHardwareStateKey, "Bluetooth", 0);
  registry.SetDword(kHardwareStateKey, "Headset", 0);
  registry.SetDword(kIndicatorKey, "VibratePresetIndex", 3);
  for (const std::string event :
       {"GoodRead", "BadRead", "ConfigChange", "ConfigChangeError", "KeyClick", "TagSearch"}) {
    registry.SetString(kBeeperKey, event, "\\" + event + ".wav");
    device.files().Write("\\" + event + ".wav", SilentWaveFile(100));
  }
  device.hardware().audio.levels = {0x77777777, 5};
  device.hardware().leds.vibrator.emplace();
}
