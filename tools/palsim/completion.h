// What a line can go on with, in the tool's shell and in the user's.
#ifndef TOOLS_PALSIM_COMPLETION_H_
#define TOOLS_PALSIM_COMPLETION_H_

#include <string>
#include <vector>

#include "platform/sim/kernel/registry.h"
#include "tools/command_words.h"

namespace palsim {

// All that the last word of `line` could become: a command, behind "call" and "usage" an export and
// then the names of its argument's numbers, behind "registry" a root or a key, behind "run" a file,
// and behind any command its options.
[[nodiscard]] std::vector<std::string> Completions(const std::string& line,
                                                   const std::vector<tools::CommandWords>& commands,
                                                   const sim::Registry& registry);

// The groups of the command line's commands.
constexpr const char* kCommandsOnDevice = "Commands on a DEVICE";
constexpr const char* kCommandsAlone = "Commands without a DEVICE";

// The completions of the last word of a palsim command line: a command (one on a DEVICE where the
// words before it name one), an option, the name of an export, a number, an effect or a sample;
// after "run" and "test" scenarios and folders. `own` has the tool's own options.
[[nodiscard]] std::vector<std::string> CommandLineCompletions(
    std::vector<std::string> words, const tools::CommandWords& own,
    const std::vector<tools::CommandWords>& commands);

}  // namespace palsim

#endif  // TOOLS_PALSIM_COMPLETION_H_
