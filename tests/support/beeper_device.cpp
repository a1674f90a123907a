#include "tests/support/beeper_device.h"

#include <fmt/format.h>

#include <iterator>

#include "platform/sim/exports.h"
#include "platform/sim/hardware/hardware.h"
#include "tests/support/wave_file.h"

namespace {
constexpr const char* kLevels[] = {"Off", "VeryLow", "Low", "Med", "High", "VeryHigh"};
}  // namespace

void FurnishBeeper(sim::Device& device) {
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

std::vector<std::string> BeeperLog(const std::vector<std::string>& lines) {
  std::vector<std::string> log;
  for (const std::string& line : lines) {
    if (line != "*") {
      log.push_back(line.starts_with('!') ? "0xC3EB0000 " + line.substr(1) : "0x43EB0000 " + line);
      continue;
    }
    log.emplace_back("0x43EB0000 PALBEEPUpdateVolGainMap() - Entry");
    for (std::size_t level = 0; level < std::size(kLevels); ++level) {
      log.push_back(fmt::format("0x43EB0000 PALBEEPUpdateVolGainMap - Updated: {},0x{:x} ",
                                kLevels[level], kLevelWords[level]));
    }
    log.emplace_back("0x43EB0000 0x0=PALBEEPUpdateVolGainMap() - Exit");
  }
  return log;
}
