// What a seed means: a device with its variations, and what its processes do and suffer.
#ifndef TOOLS_PALSIM_EXPLORE_WORLD_H_
#define TOOLS_PALSIM_EXPLORE_WORLD_H_

#include <cstdint>
#include <string>

#include "platform/sim/device.h"
#include "tools/palsim/explore/move.h"

namespace palsim {

struct WorldOptions {
  std::string device{};    // a sample's name, or the folder of a device; empty: a sample by seed
  unsigned steps = 300;    // of a world
  unsigned processes = 3;  // at most
  std::string faults = "rare";  // calls that fail, and kills: "none", "rare" or "often"
  std::string program{};        // a shared library that runs as a process; empty: none
};

// Where worlds begin: the devices, read once and only copied from then on.
struct Sample {
  std::string name;  // "rm21"; empty where it has a folder of its own
  sim::Device device;
};

struct World {
  const Sample* sample = nullptr;
  Moves moves;
};

// Reads the devices that worlds begin with. Throws UsageError where there is none.
void ReadSamples(const WorldOptions& options);
// The same seed gives the same world. Throws UsageError for a device that cannot be read.
[[nodiscard]] World MakeWorld(std::uint64_t seed, const WorldOptions& options);

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPLORE_WORLD_H_
