// The audio driver: wave volume, codec gain, and what plays just now.
#ifndef PLATFORM_SIM_HARDWARE_AUDIO_H_
#define PLATFORM_SIM_HARDWARE_AUDIO_H_

#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace sim {

class Event;

// What every sound goes through. It stays as it was set when the device is put away.
struct AudioLevels {
  std::uint32_t volume = 0x99999999;  // of the wave output: left channel low, right channel high
  std::uint32_t gain = 50;            // of the codec
  bool operator==(const AudioLevels&) const = default;
};

struct Sound {
  std::string path;
  std::shared_ptr<Event> stopped;  // set where it is cut short
};

struct Audio {
  AudioLevels levels;
  AudioLevels described;                  // with which device.toml lets the device begin
  std::map<std::uint32_t, Sound> sounds;  // by the process that plays it: one each
};

}  // namespace sim

#endif  // PLATFORM_SIM_HARDWARE_AUDIO_H_
