// Makes a world that violates a property small.
#ifndef TOOLS_PALSIM_EXPLORE_SHRINK_H_
#define TOOLS_PALSIM_EXPLORE_SHRINK_H_

#include <functional>

#include "tools/palsim/explore/move.h"

namespace palsim {

// Returns the smallest list of moves that was found for which `is_violated` is still true. It must
// be true for `moves`. Leaves out whole processes, then halves, quarters, down to single moves.
// Then joins the processes into one, makes each begun call a plain call, and leaves out single
// moves again.
[[nodiscard]] Moves Shrink(Moves moves, const std::function<bool(const Moves& moves)>& is_violated);

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPLORE_SHRINK_H_
