// The [audio] of device.toml: the levels with which the device begins, and those that it had when
// it was put away.
#include "platform/sim/description_part.h"
#include "platform/sim/hardware/hardware.h"

namespace sim {
namespace {

void ReadLevels(const Part& part, const toml::table& table, AudioLevels& levels) {
  if (const toml::node* volume = table.get("volume")) levels.volume = part.Number(*volume);
  if (const toml::node* gain = table.get("gain")) levels.gain = part.Number(*gain);
}

}  // namespace

void ReadAudio(const Part& part, const toml::node& node, Device& device) {
  const auto& table = part.As<toml::table>(node, "a table: [audio]");
  part.Allow(table, {"volume", "gain"});
  Audio& audio = device.hardware().audio;
  ReadLevels(part, table, audio.described);
  audio.levels = audio.described;
}

void ReadKeptAudio(const Part& part, const toml::table& state, Device& device) {
  ReadLevels(part, state, device.hardware().audio.levels);
}

std::string KeptAudio(Device& device) {
  const Audio& audio = device.hardware().audio;
  if (audio.levels == audio.described) return {};
  return fmt::format("volume = 0x{:08X}\ngain = {}\n", audio.levels.volume, audio.levels.gain);
}

}  // namespace sim
