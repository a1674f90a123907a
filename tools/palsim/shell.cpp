#include "tools/palsim/shell.h"

#include <fmt/format.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <exception>
#include <optional>
#include <string_view>
#include <system_error>

#include "tools/palsim/commands.h"
#include "tools/palsim/completion.h"
#include "tools/palsim/export_call.h"
#include "tools/palsim/interrupts.h"
#include "tools/palsim/line_editor.h"
#include "tools/palsim/nearest.h"
#include "tools/palsim/scenario/pattern.h"
#include "tools/palsim/usage_error.h"
#include "tools/streams.h"

namespace palsim {
namespace {

// Whether a call of these words hands a password over. What is kept in a file has none.
bool HasPassword(const std::vector<std::string>& words) {
  for (std::size_t at = 0; at < words.size(); ++at) {
    const auto after = words.begin() + static_cast<std::ptrdiff_t>(at) + 1;
    const std::vector<std::string> arguments(after, words.end());
    if (ShownArguments(words[at], arguments) != arguments) return true;
  }
  return false;
}

// At a terminal lines are edited; from a pipe or a file they are read as they are.
class Input {
 public:
  Input(const Interrupts& interrupts, const std::filesystem::path& folder, Completer completer)
      : interrupts_(interrupts) {
    if (isatty(STDIN_FILENO) == 0) return;
    editor_.emplace(folder / "shell_history", std::move(completer),
                    [this] { return WaitForByte(); });
  }
  [[nodiscard]] bool is_interactive() const { return editor_.has_value(); }
  // The signal that has ended the input; 0: none.
  [[nodiscard]] int signal() const { return signal_; }

  void Remember(const std::vector<std::string>& words, const std::string& line) {
    if (editor_ && !HasPassword(words)) LineEditor::Remember(line);
  }

  // False at the end of what is typed, and where a signal ends it.
  bool Read(std::string& line) {
    if (editor_) return Edit(line);
    line.clear();
    for (std::size_t end = 0; (end = bytes_.find('\n')) == std::string::npos;) {
      if (ReadBlock()) continue;
      line.swap(bytes_);
      return signal_ == 0 && !line.empty();
    }
    line = bytes_.substr(0, bytes_.find('\n'));
    bytes_.erase(0, line.size() + 1);
    return true;
  }

 private:
  bool Edit(std::string& line) {
    if (editor_->Read("palsim> ", line)) return true;
    // A terminal that is closed before the editor waits ends the line without a wait.
    if (signal_ == 0) signal_ = interrupts_.Pending();
    return false;
  }

  LineEditor::Wait WaitForByte() {
    const int signal = interrupts_.WaitForInput();
    if (signal == 0) return LineEditor::Wait::kByte;
    if (signal == SIGINT) return LineEditor::Wait::kInterrupt;
    signal_ = signal;
    return LineEditor::Wait::kEnd;
  }

  bool ReadBlock() {
    std::array<char, 4096> block{};
    signal_ = interrupts_.WaitForInput();
    if (signal_ != 0) return false;
    const ssize_t count = read(STDIN_FILENO, block.data(), block.size());
    if (count > 0) bytes_.append(block.data(), static_cast<std::size_t>(count));
    return count > 0 || (count < 0 && errno == EINTR);
  }

  const Interrupts& interrupts_;
  std::optional<LineEditor> editor_;
  std::string bytes_;
  int signal_ = 0;
};

void RunLine(Session& session, const ShellCommands& commands,
             const std::vector<std::string>& words) {
  std::vector<std::string_view> names;
  for (const tools::CommandWords& command : commands.commands) names.push_back(command.name);
  if (std::ranges::find(names, words[0]) != names.end()) return commands.run(session, words);
  const std::string nearest = DidYouMean(words[0], names);
  throw UsageError(fmt::format("there is no command '{}'{}", words[0],
                               nearest.empty() ? "; 'help' lists them" : nearest));
}

// The exit status. What is printed can fail at any place.
int Converse(Session& session, const ShellCommands& commands, Input& input) {
  int status = kSuccess;
  for (std::string line; input.Read(line);) {
    try {
      std::vector<std::string> words;
      for (Word& word : SplitWords(line)) words.push_back(std::move(word.text));
      if (words.empty()) continue;
      input.Remember(words, line);
      if (words[0] == "quit" || words[0] == "exit") break;
      RunLine(session, commands, words);
      tools::PrintAtOnce({});  // a program may wait for the answer
    } catch (const std::system_error&) {
      throw;  // nothing can be printed any more
    } catch (const std::runtime_error& error) {
      tools::PrintError("palsim: {}\n", error.what());
      if (!input.is_interactive()) status = kUsage;
    }
  }
  return input.signal() == 0 ? status : 128 + input.signal();
}

}  // namespace

int Shell(const std::filesystem::path& folder, const ShellCommands& commands) {
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));  // a reader that has gone is an error to print
  const Interrupts interrupts;                       // before the device has threads
  Session session(folder);
  session.set_title("shell");
  Input input(interrupts, folder, [&](const std::string& line) {
    return Completions(line, commands.commands, session.device().registry());
  });
  int status = kSuccess;
  std::exception_ptr failure;
  try {
    if (input.is_interactive()) {
      fmt::print("{}: 'help' lists the commands, Tab completes\n", session.identity().name);
    }
    status = Converse(session, commands, input);
  } catch (...) {
    failure = std::current_exception();
  }
  session.Save();
  if (failure) std::rethrow_exception(failure);
  return status;
}

}  // namespace palsim
