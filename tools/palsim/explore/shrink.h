// Makes a world small that violates a property: leaves out what it does not need.
#ifndef TOOLS_PALSIM_EXPLORE_SHRINK_H_
#define TOOLS_PALSIM_EXPLORE_SHRINK_H_

#include <functional>

#include "tools/palsim/explore/move.h"

namespace palsim {

// The fewest moves that were found for which `is_violated` still holds, as it does for all of them.
// First whole processes are left out, then halves, quarters and so on down to single moves.
[[nodiscard]] Moves Shrink(Moves moves, const std::function<bool(const Moves& moves)>& is_violated);

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPLORE_SHRINK_H_
