// The interactive shell: one process stays attached while commands are typed.
#ifndef TOOLS_PALSIM_SHELL_H_
#define TOOLS_PALSIM_SHELL_H_

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "tools/command_words.h"
#include "tools/palsim/session.h"

namespace palsim {

// What can be typed.
struct ShellCommands {
  std::vector<tools::CommandWords> commands;
  // Throws UsageError where a line has not the words that its command takes.
  std::function<void(Session& session, const std::vector<std::string>& words)> run;
};

// Reads lines until "quit", "exit" or the end of what is typed, and saves the device, whatever ends
// it. Gives the exit status: 128 and the signal's number where one has ended it.
int Shell(const std::filesystem::path& folder, const ShellCommands& commands);

}  // namespace palsim

#endif  // TOOLS_PALSIM_SHELL_H_
