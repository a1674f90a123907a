#ifndef TOOLS_PALSIM_EXPLORE_EXPLORE_COMMAND_H_
#define TOOLS_PALSIM_EXPLORE_EXPLORE_COMMAND_H_

#include <cstdint>
#include <string>
#include <vector>

#include "tools/palsim/explore/world.h"

namespace palsim {

inline constexpr const char* kDefaultSeeds = "1-1000";

struct ExploreOptions {
  WorldOptions world;
  std::string seeds = kDefaultSeeds;
  std::string shard = "1/1";
  std::uint32_t seconds = 0;  // how long; 0: until all seeds are played
  unsigned jobs = 0;          // at once; 0: one for each processor
  std::string out;            // a new or empty folder for findings and report; empty: none
};
// Plays the world of each seed; kFailure where a property does not hold, or a signal ended it.
int Explore(const ExploreOptions& options);
// Adds up the reports of folders.
int MergeReports(const std::vector<std::string>& folders, const std::string& out);
// What must hold, one line each.
void PrintProperties();

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPLORE_EXPLORE_COMMAND_H_
