// What a seed means: a device with its variations, and what its processes do and suffer.
#ifndef TOOLS_PALSIM_EXPLORE_WORLD_H_
#define TOOLS_PALSIM_EXPLORE_WORLD_H_

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/sim/device.h"
#include "tools/palsim/explore/move.h"

namespace palsim {

enum class FaultRate : std::uint8_t { kNone, kRare, kOften };
// Throws UsageError.
[[nodiscard]] FaultRate ParseFaultRate(std::string_view word);
[[nodiscard]] std::string_view FaultRateText(FaultRate rate);

struct WorldOptions {
  std::string device{};    // a sample's name, or the folder of a device; empty: a sample by seed
  unsigned steps = 300;    // of a world
  unsigned processes = 3;  // at most
  FaultRate faults = FaultRate::kRare;
  std::string program{};  // a shared library that runs as a process; empty: none
};

// Where worlds begin: the devices, read once and only copied from then on.
struct Sample {
  std::string name;    // "rm21"
  std::string folder;  // empty: it is a sample
  sim::Device device;
};

struct World {
  const Sample* sample = nullptr;
  Moves moves;
};

// The same seed gives the same world. Throws UsageError for a device that cannot be read.
[[nodiscard]] World MakeWorld(std::uint64_t seed, const WorldOptions& options);

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPLORE_WORLD_H_
