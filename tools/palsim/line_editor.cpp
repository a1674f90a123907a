#include "tools/palsim/line_editor.h"

#include <editline/readline.h>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace palsim {
namespace {

constexpr int kMostLines = 1000;

// libedit calls a bare function back.
Completer& CurrentCompleter() {
  static Completer completer;
  return completer;
}

// One candidate a call, from the heap; libedit frees it.
char* NextCandidate(const char* /*word*/, int state) {
  static std::vector<std::string> candidates;
  static std::size_t next = 0;
  if (state == 0) {
    const std::string line(rl_line_buffer, static_cast<std::size_t>(rl_point));
    candidates = CurrentCompleter()(line);
    next = 0;
    // A path may go on.
    const bool is_path = !candidates.empty() && candidates[0].find('\\') != std::string::npos;
    rl_completion_append_character = is_path ? '\0' : ' ';
  }
  return next < candidates.size() ? strdup(candidates[next++].c_str()) : nullptr;
}

char** Complete(const char* word, int /*start*/, int /*end*/) {
  rl_attempted_completion_over = 1;  // no names of the host's files
  return rl_completion_matches(word, &NextCandidate);
}

}  // namespace

LineEditor::LineEditor(std::filesystem::path history, Completer completer)
    : history_(std::move(history)) {
  CurrentCompleter() = std::move(completer);
  rl_initialize();
  rl_attempted_completion_function = &Complete;
  static char breaks[] = " \t";
  rl_basic_word_break_characters = breaks;
  rl_completer_word_break_characters = breaks;
  using_history();
  stifle_history(kMostLines);
  read_history(history_.c_str());
}

LineEditor::~LineEditor() {
  write_history(history_.c_str());
  CurrentCompleter() = nullptr;
}

bool LineEditor::Read(const char* prompt, std::string& line) {
  const std::unique_ptr<char, decltype(&std::free)> typed(readline(prompt), &std::free);
  if (typed == nullptr) return false;
  line = typed.get();
  if (line.find_first_not_of(" \t") != std::string::npos) add_history(line.c_str());
  return true;
}

}  // namespace palsim
