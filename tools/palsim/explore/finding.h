// A violation with the smallest world that shows it.
#ifndef TOOLS_PALSIM_EXPLORE_FINDING_H_
#define TOOLS_PALSIM_EXPLORE_FINDING_H_

#include <cstdint>
#include <string>
#include <vector>

#include "tools/palsim/explore/play.h"

namespace palsim {

struct Finding {
  std::string property;
  std::uint64_t seed = 0;
  std::string how;
  std::string command;             // that finds it again
  std::string scenario;            // its text
  std::vector<std::string> lines;  // the last ones of the journal
};

// What a seed came to; `played.violation` is there.
[[nodiscard]] Finding MakeFinding(const World& world, const Played& played, std::uint64_t seed,
                                  const WorldOptions& options);
// The command that finds a seed's violation again.
[[nodiscard]] std::string CommandOf(std::uint64_t seed, const WorldOptions& options);

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPLORE_FINDING_H_
