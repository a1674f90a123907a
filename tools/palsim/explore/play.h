// Plays the moves of a world on a new device, and stops at the first property that does not hold.
#ifndef TOOLS_PALSIM_EXPLORE_PLAY_H_
#define TOOLS_PALSIM_EXPLORE_PLAY_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/palsim/explore/watch.h"
#include "tools/palsim/explore/world.h"

namespace palsim {

struct Played {
  Moves moves;  // that could be played, with the starts that they needed
  std::optional<Violation> violation;
  std::vector<std::uint64_t> met;  // of each property
  std::uint64_t calls = 0;
  std::uint64_t faults = 0;
  std::uint64_t kills = 0;
  std::uint64_t restarts = 0;
  std::uint64_t time_ms = 0;  // on the device's clock
};

// A move that cannot be played as things stand is left out.
[[nodiscard]] Played Play(const Sample& sample, const Moves& moves,
                          std::span<const PropertyRow> properties);

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPLORE_PLAY_H_
