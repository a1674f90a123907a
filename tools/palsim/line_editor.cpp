#include "tools/palsim/line_editor.h"

#include <editline/readline.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

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

bool was_interrupted = false;
bool is_line_cleared = false;

// The keys that clear a line and enter it take the place of an interrupt. A second one at once ends
// the input.
int NextByte(FILE* /*terminal*/) {
  constexpr int kClearLine = 'U' & 0x1F;
  if (std::exchange(is_line_cleared, false)) return '\n';
  const LineEditor::Wait wait = CurrentWait()();
  is_line_cleared = wait == LineEditor::Wait::kInterrupt && !was_interrupted;
  was_interrupted = wait == LineEditor::Wait::kInterrupt;
  if (is_line_cleared) return kClearLine;
  unsigned char byte = 0;
  return wait == LineEditor::Wait::kByte && read(STDIN_FILENO, &byte, 1) == 1 ? byte : EOF;
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
  // Not through a link, and whole.
  const std::string written = history_.string() + ".writing";
  std::error_code ignored;
  std::filesystem::remove(written, ignored);
  if (write_history(written.c_str()) == 0) std::filesystem::rename(written, history_, ignored);
  CurrentCompleter() = nullptr;
  CurrentWait() = nullptr;
}

void LineEditor::Remember(const std::string& line) {
  add_history(line.c_str());
}

bool LineEditor::Read(const char* prompt, std::string& line) {
  const std::unique_ptr<char, decltype(&std::free)> typed(readline(prompt), &std::free);
  if (typed == nullptr) return false;
  line = typed.get();
  return true;
}

}  // namespace palsim
