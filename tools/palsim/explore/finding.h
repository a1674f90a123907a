// A violation with the smallest world that shows it.
#ifndef TOOLS_PALSIM_EXPLORE_FINDING_H_
#define TOOLS_PALSIM_EXPLORE_FINDING_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/palsim/explore/play.h"

namespace palsim {

// What is found, beside the properties, where a world takes its process with it or has no end.
inline constexpr std::string_view kWorldsEnd = "worlds-end";

struct Finding {
  std::string property;
  std::uint64_t seed = 0;
  std::string how;
  std::string command;               // that finds it again
  std::string scenario{};            // its text; empty as long as its world is not small
  std::vector<std::string> lines{};  // the last ones of its journal
};

// Of what a property found. Where the scenario does not show it again, its lines say so.
[[nodiscard]] Finding MakeSmall(Finding finding, const WorldOptions& options);
// The command that finds a seed's violation again.
[[nodiscard]] std::string CommandOf(std::uint64_t seed, const WorldOptions& options);

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPLORE_FINDING_H_
