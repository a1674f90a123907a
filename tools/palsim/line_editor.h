// Lines typed at a terminal: edited, completed with Tab, and remembered from one shell to the next.
#ifndef TOOLS_PALSIM_LINE_EDITOR_H_
#define TOOLS_PALSIM_LINE_EDITOR_H_

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace palsim {

// Of the line as it stands before the cursor: what its last word could become.
using Completer = std::function<std::vector<std::string>(const std::string& line)>;

// There is one terminal, and so one editor at a time.
class LineEditor {
 public:
  // What comes next: a byte of standard input, an interrupt, which clears the line, or the end.
  enum class Wait : std::uint8_t { kByte, kInterrupt, kEnd };

  // A second interrupt straight after one is the end, too. `history` holds the lines of before, if
  // it is there; it gets those of now at the end.
  LineEditor(std::filesystem::path history, Completer completer, std::function<Wait()> wait);
  ~LineEditor();
  LineEditor(const LineEditor&) = delete;
  LineEditor& operator=(const LineEditor&) = delete;

  // False at the end of what is typed.
  bool Read(const char* prompt, std::string& line);
  // Keeps a line for the history.
  static void Remember(const std::string& line);

 private:
  std::filesystem::path history_;
};

}  // namespace palsim

#endif  // TOOLS_PALSIM_LINE_EDITOR_H_
