// The sound of a run as a WAV file: 16 bits, two channels, at the volumes that were in force.
#ifndef TOOLS_PALSIM_TIMELINE_SOUND_OF_RUN_H_
#define TOOLS_PALSIM_TIMELINE_SOUND_OF_RUN_H_

#include <string>
#include <vector>

#include "platform/sim/kernel/file_system.h"
#include "tools/palsim/timeline/timeline.h"

namespace palsim {

constexpr std::uint32_t kSoundRate = 22050;  // samples a second

struct RunSound {
  std::string wav;                   // the file's bytes
  std::vector<std::string> missing;  // sounds that the device has no readable file for now
};

// What plays at the same time is mixed; each channel has its half of the wave volume, full where
// the journal does not know it. The codec's gain is not heard: it is a number without a unit. The
// samples come from the device's own wave files. Throws UsageError for a run of over half an hour.
[[nodiscard]] RunSound SoundOfRun(const Timeline& timeline, const sim::FileSystem& files);

}  // namespace palsim

#endif  // TOOLS_PALSIM_TIMELINE_SOUND_OF_RUN_H_
