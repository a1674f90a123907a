#include "tools/palsim/explore/explore.h"

#include <chrono>
#include <map>

namespace palsim {

Report ExploreSeeds(const WorldOptions& options,
                    const std::function<bool(std::uint64_t& seed)>& next) {
  using Clock = std::chrono::steady_clock;
  constexpr unsigned kMostOfAProperty = 3;
  const auto start = Clock::now();
  Report report;
  std::map<std::string_view, unsigned> found;
  for (std::uint64_t seed = 0; next(seed);) {
    const World world = MakeWorld(seed, options);
    const Played played = Play(*world.sample, world.moves, Properties());
    report.Add(played);
    if (!played.violation || ++found[played.violation->property] > kMostOfAProperty) continue;
    report.Add(MakeFinding(world, played, seed, options));
  }
  report.seconds = std::chrono::duration<double>(Clock::now() - start).count();
  return report;
}

}  // namespace palsim
