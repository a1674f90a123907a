// The sound of a run as a WAV file: 16 bits, two channels, at the volumes that were in force.
#ifndef TOOLS_PALSIM_TIMELINE_SOUND_OF_RUN_H_
#define TOOLS_PALSIM_TIMELINE_SOUND_OF_RUN_H_

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sim/kernel/file_system.h"
#include "tools/palsim/timeline/timeline.h"

namespace palsim {

constexpr std::uint32_t kSoundRate = 22050;  // samples a second

struct RunSound {
  std::vector<std::string> missing;        // sounds that the device has no readable file for now
  std::optional<std::uint64_t> cut_at_ms;  // where the format has no room for more of the run
};

// Gives the file's bytes in blocks. What plays at the same time is mixed; each channel has its half
// of the wave volume, full where the journal does not know it. The codec's gain is not heard: it is
// a number without a unit. The samples come from the device's own wave files.
RunSound WriteSoundOfRun(const Timeline& timeline, const sim::FileSystem& files,
                         const std::function<void(std::string_view bytes)>& write);

}  // namespace palsim

#endif  // TOOLS_PALSIM_TIMELINE_SOUND_OF_RUN_H_
