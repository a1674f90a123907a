// palsim explore: plays one world after another, and reports what does not hold.
#ifndef TOOLS_PALSIM_EXPLORE_EXPLORE_H_
#define TOOLS_PALSIM_EXPLORE_EXPLORE_H_

#include <cstdint>
#include <functional>

#include "tools/palsim/explore/report.h"

namespace palsim {

// Plays worlds while there is a next seed. A violation is made small, once for each property.
[[nodiscard]] Report ExploreSeeds(const WorldOptions& options,
                                  const std::function<bool(std::uint64_t& seed)>& next);

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPLORE_EXPLORE_H_
