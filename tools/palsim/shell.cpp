// The interactive shell: one process stays attached while commands are typed.
#include <fmt/format.h>
#include <unistd.h>

#include <array>
#include <iostream>
#include <optional>
#include <sstream>

#include "platform/sim/kernel/registry_text.h"
#include "tools/palsim/commands.h"
#include "tools/palsim/completion.h"
#include "tools/palsim/export_call.h"
#include "tools/palsim/line_editor.h"
#include "tools/palsim/nearest.h"
#include "tools/palsim/session.h"
#include "tools/streams.h"

namespace palsim {
namespace {

using ShellWords = std::vector<std::string>;

struct ShellCommand {
  std::string_view name;
  std::string_view usage;
  void (*run)(Session& session, const ShellWords& words);
};

void RunCall(Session& session, const ShellWords& words) {
  if (words.size() < 2) throw UsageError("call what? 'exports' lists the exports");
  const CallOutcome outcome =
      CallExport(session.process(), words[1], ShellWords(words.begin() + 2, words.end()));
  PrintOutcome(words[1], outcome);
}

void RunRegistry(Session& session, const ShellWords& words) {
  if (words.size() != 2) throw UsageError("registry takes one key");
  const auto key = session.device().registry().Find(std::string_view(words[1]));
  if (key == nullptr) throw UsageError("the registry has no key " + words[1]);
  fmt::print("{}", sim::ExportRegistryText(*key));
}

void RunAdvance(Session& session, const ShellWords& words) {
  constexpr std::size_t kMostDigits = 9;
  const bool usable = words.size() == 2 && words[1].size() <= kMostDigits &&
                      words[1].find_first_not_of("0123456789") == std::string::npos;
  if (!usable) throw UsageError("advance takes a time in milliseconds");
  session.device().Advance(static_cast<std::uint32_t>(std::stoul(words[1])));
}

void RunExports(Session& /*session*/, const ShellWords& /*words*/) {
  for (const std::string_view name : ExportNames()) fmt::print("{}\n", name);
}

void RunUsage(Session& /*session*/, const ShellWords& words) {
  if (words.size() != 2) throw UsageError("usage takes one export");
  fmt::print("{}", UsageText(words[1]));
}

void RunHelp(Session& session, const ShellWords& words);

constexpr std::array kCommands{
    ShellCommand{"call", "call EXPORT [ARGUMENT...]   call an export", &RunCall},
    ShellCommand{"usage", "usage EXPORT                how an export is called", &RunUsage},
    ShellCommand{"registry", "registry KEY                show a key with all below it",
                 &RunRegistry},
    ShellCommand{"advance", "advance MS                  let time pass on the device", &RunAdvance},
    ShellCommand{"exports", "exports                     list the exports", &RunExports},
    ShellCommand{"help", "help                        show this", &RunHelp},
};

void RunHelp(Session& /*session*/, const ShellWords& /*words*/) {
  for (const ShellCommand& command : kCommands) fmt::print("  {}\n", command.usage);
  fmt::print("  quit                        detach, save the device and leave\n");
}

std::vector<std::string_view> CommandNames() {
  std::vector<std::string_view> names{"quit"};
  for (const ShellCommand& command : kCommands) names.push_back(command.name);
  return names;
}

void RunLine(Session& session, const ShellWords& words) {
  for (const ShellCommand& command : kCommands) {
    if (command.name == words[0]) return command.run(session, words);
  }
  const std::string nearest = DidYouMean(words[0], CommandNames());
  throw UsageError(fmt::format("there is no command '{}'{}", words[0],
                               nearest.empty() ? "; 'help' lists them" : nearest));
}

// At a terminal lines are edited; from a pipe or a file they are read as they are.
class Input {
 public:
  Input(const std::filesystem::path& folder, Session& session) {
    if (isatty(STDIN_FILENO) == 0) return;
    editor_.emplace(folder / "shell_history", [&session](const std::string& line) {
      return Completions(line, CommandNames(), session.device().registry());
    });
  }
  [[nodiscard]] bool is_interactive() const { return editor_.has_value(); }
  bool Read(std::string& line) {
    if (editor_) return editor_->Read("palsim> ", line);
    return static_cast<bool>(std::getline(std::cin, line));
  }

 private:
  std::optional<LineEditor> editor_;
};

ShellWords Split(const std::string& line) {
  std::istringstream stream(line);
  ShellWords words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

}  // namespace

int Shell(const std::filesystem::path& folder) {
  Session session(folder);
  session.PrintJournal();
  Input input(folder, session);
  const bool interactive = input.is_interactive();
  if (interactive)
    fmt::print("{}: 'help' lists the commands, Tab completes\n", session.identity().name);
  int status = kSuccess;
  for (std::string line; input.Read(line);) {
    const ShellWords words = Split(line);
    if (words.empty()) continue;
    if (words[0] == "quit") break;
    try {
      RunLine(session, words);
    } catch (const UsageError& error) {
      fmt::print(stderr, "palsim: {}\n", tools::Printable(error.what()));
      if (!interactive) status = kUsage;
    }
  }
  session.Save();
  return status;
}

}  // namespace palsim
