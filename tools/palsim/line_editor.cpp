#include "tools/palsim/line_editor.h"

#include <editline/readline.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace palsim {
namespace {

constexpr int kMostLines = 1000;

// libedit calls bare functions back.
Completer& CurrentCompleter() {
  static Completer completer;
  return completer;
}

std::function<LineEditor::Wait()>& CurrentWait() {
  static std::function<LineEditor::Wait()> wait;
  return wait;
}

bool line_has_bytes = false;

// The key that clears a line takes the place of an interrupt.
int NextByte(FILE* /*terminal*/) {
  constexpr int kClearLine = 'U' & 0x1F;
  const LineEditor::Wait wait = CurrentWait()();
  const bool clears = wait == LineEditor::Wait::kInterrupt && line_has_bytes;
  line_has_bytes = wait == LineEditor::Wait::kByte;
  if (clears) return kClearLine;
  unsigned char byte = 0;
  return line_has_bytes && read(STDIN_FILENO, &byte, 1) == 1 ? byte : EOF;
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
    const bool is_path = !candidates.empty() && (candidates[0].find('\\') != std::string::npos ||
                                                 candidates[0].ends_with('/'));
    rl_completion_append_character = is_path ? '\0' : ' ';
  }
  return next < candidates.size() ? strdup(candidates[next++].c_str()) : nullptr;
}

char** Complete(const char* word, int /*start*/, int /*end*/) {
  rl_attempted_completion_over = 1;  // no names of the host's files
  return rl_completion_matches(word, &NextCandidate);
}

}  // namespace

LineEditor::LineEditor(std::filesystem::path history, Completer completer,
                       std::function<Wait()> wait)
    : history_(std::move(history)) {
  CurrentCompleter() = std::move(completer);
  CurrentWait() = std::move(wait);
  rl_getc_function = &NextByte;
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
  CurrentWait() = nullptr;
}

bool LineEditor::Read(const char* prompt, std::string& line) {
  line_has_bytes = false;
  const std::unique_ptr<char, decltype(&std::free)> typed(readline(prompt), &std::free);
  if (typed == nullptr) return false;
  line = typed.get();
  if (line.find_first_not_of(" \t") != std::string::npos) add_history(line.c_str());
  return true;
}

}  // namespace palsim
