// Arguments for an export: mostly those that its header tells of, sometimes their edges, and
// sometimes anything.
#ifndef TOOLS_PALSIM_EXPLORE_ARGUMENTS_H_
#define TOOLS_PALSIM_EXPLORE_ARGUMENTS_H_

#include <string>
#include <vector>

#include "tools/palsim/declarations.h"
#include "tools/palsim/explore/choices.h"

namespace palsim {

// As they are typed.
[[nodiscard]] std::vector<std::string> ChooseArguments(Choices& choices,
                                                       const Declaration& declaration);

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPLORE_ARGUMENTS_H_
