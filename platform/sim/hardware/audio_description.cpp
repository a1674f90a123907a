// The [audio] of device.toml: the levels at the start, and those that the saved device had.
#include "platform/sim/description_part.h"
#include "platform/sim/hardware/hardware.h"

namespace sim {
namespace {

void ReadLevels(const Part& part, const toml::node& node, AudioLevels& levels) {
  const auto& table = part.As<toml::table>(node, "a table: { volume = 0x66666666, gain = 50 }");
  part.Allow(table, {"volume", "gain"});
  if (const toml::node* volume = table.get("volume")) levels.volume = part.Number(*volume);
  if (const toml::node* gain = table.get("gain")) levels.gain = part.Number(*gain);
}

}  // namespace

void ReadAudio(const Part& part, const toml::node& node, Device& device) {
  Audio& audio = device.hardware().audio;
  ReadLevels(part, node, audio.described);
  audio.levels = audio.described;
}

void ReadAudioState(const Part& part, const toml::node& node, Device& device) {
  ReadLevels(part, node, device.hardware().audio.levels);
}

std::string AudioStateText(Device& device) {
  const Audio& audio = device.hardware().audio;
  if (audio.levels == audio.described) return {};
  return fmt::format("{{ volume = 0x{:08X}, gain = {} }}", audio.levels.volume, audio.levels.gain);
}

}  // namespace sim
