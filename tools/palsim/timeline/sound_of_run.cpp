#include "tools/palsim/timeline/sound_of_run.h"

namespace palsim {
std::string SoundOfRun(const Timeline& /*timeline*/, const sim::FileSystem& /*files*/) {
  return {};
}
}  // namespace palsim
