// The sound of a run as a WAV file: 16 bits, two channels, at the volumes that were in force.
#ifndef TOOLS_PALSIM_TIMELINE_SOUND_OF_RUN_H_
#define TOOLS_PALSIM_TIMELINE_SOUND_OF_RUN_H_

#include <string>

#include "platform/sim/kernel/file_system.h"
#include "tools/palsim/timeline/timeline.h"

namespace palsim {

// The samples come from the device's own wave files.
[[nodiscard]] std::string SoundOfRun(const Timeline& timeline, const sim::FileSystem& files);

}  // namespace palsim

#endif  // TOOLS_PALSIM_TIMELINE_SOUND_OF_RUN_H_
