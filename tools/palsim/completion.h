// What a line of the shell can go on with.
#ifndef TOOLS_PALSIM_COMPLETION_H_
#define TOOLS_PALSIM_COMPLETION_H_

#include <string>
#include <vector>

#include "platform/sim/kernel/registry.h"
#include "tools/palsim/shell.h"

namespace palsim {

// All that the last word of `line` could become: a command, behind "call" and "usage" an export and
// then the names of its argument's numbers, behind "registry" a root or a key, behind "run" a file,
// and behind any command its options.
[[nodiscard]] std::vector<std::string> Completions(const std::string& line,
                                                   const std::vector<ShellCommand>& commands,
                                                   const sim::Registry& registry);

}  // namespace palsim

#endif  // TOOLS_PALSIM_COMPLETION_H_
