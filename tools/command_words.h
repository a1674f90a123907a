// What can be typed behind a tool's name, by the definitions of its command line.
#ifndef TOOLS_COMMAND_WORDS_H_
#define TOOLS_COMMAND_WORDS_H_

#include <string>
#include <string_view>
#include <vector>

namespace tools {

// What the completion of bash and zsh gives a tool: behind it stand the words of the line, and the
// tool prints what the last one could become, one a line.
constexpr std::string_view kCompleteOption = "--complete";

struct CommandWords {
  std::string name;
  std::string group;  // under which the help lists it
  std::vector<std::string> options;
};

// Of a CLI::App, whose header takes seconds to compile.
template <class App>
[[nodiscard]] CommandWords WordsOf(const App& app) {
  CommandWords words{app.get_name(), app.get_group(), {}};
  for (const auto* option : app.get_options()) {
    std::string name = option->get_name();
    if (name.starts_with("--")) words.options.push_back(std::move(name));
  }
  return words;
}

template <class App>
[[nodiscard]] std::vector<CommandWords> CommandsOf(const App& app) {
  std::vector<CommandWords> commands;
  for (const auto* command : app.get_subcommands({})) commands.push_back(WordsOf(*command));
  return commands;
}

}  // namespace tools

#endif  // TOOLS_COMMAND_WORDS_H_
