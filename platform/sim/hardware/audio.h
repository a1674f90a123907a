// The audio driver: wave volume, codec gain, and the sounds that play now.
#ifndef PLATFORM_SIM_HARDWARE_AUDIO_H_
#define PLATFORM_SIM_HARDWARE_AUDIO_H_

#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace sim {

class Event;

// Volume and gain apply to every sound. A saved device keeps them.
struct AudioLevels {
  std::uint32_t volume = 0x99999999;  // of the wave output: left channel low, right channel high
  std::uint32_t gain = 50;            // of the codec
  bool operator==(const AudioLevels&) const = default;
};

struct Sound {
  std::string path;
  std::shared_ptr<Event> stopped;  // set when the sound is stopped before its end
};

struct Audio {
  AudioLevels levels;
  AudioLevels described;                  // the levels in device.toml, at the start
  std::map<std::uint32_t, Sound> sounds;  // by process: each plays one at most
};

}  // namespace sim

#endif  // PLATFORM_SIM_HARDWARE_AUDIO_H_
