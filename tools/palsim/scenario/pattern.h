// How a statement of a scenario looks, as a line of words: "PROCESS begins EXPORT ARGUMENTS... as
// CALL". A word in capitals stands for what is filled in, one with dots for any number of words,
// TIME and DELAY for two ("120 ms"); all others are written as they stand.
#ifndef TOOLS_PALSIM_SCENARIO_PATTERN_H_
#define TOOLS_PALSIM_SCENARIO_PATTERN_H_

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace palsim {

struct Word {
  std::string text;  // of a quoted text what stands between the quotes
  bool quoted = false;
};
using Words = std::vector<Word>;

// Words and texts in quotes ("" in one is a quote) with blanks between them; # begins a comment.
// Throws UsageError.
[[nodiscard]] Words SplitWords(std::string_view line);
// With one blank between them.
[[nodiscard]] std::string Joined(const Words& words);

// What stood where a pattern has its words in capitals.
class Filled {
 public:
  void AddBefore(std::string_view name, Words words) {
    parts_.emplace(parts_.begin(), name, std::move(words));
  }
  [[nodiscard]] const std::vector<std::pair<std::string_view, Words>>& parts() const {
    return parts_;
  }
  [[nodiscard]] bool Has(std::string_view name) const;
  // Throws std::logic_error for a name that the pattern does not have.
  [[nodiscard]] const Words& words(std::string_view name) const;
  [[nodiscard]] std::string Text(std::string_view name) const { return Joined(words(name)); }

 private:
  std::vector<std::pair<std::string_view, Words>> parts_;  // names without their dots
};

// Whether a line's words are as the pattern wants them.
[[nodiscard]] bool Matches(std::string_view pattern, const Words& line, Filled& filled);
// How many words of the line the pattern has as they stand: to guess what was meant.
[[nodiscard]] std::size_t WordsInCommon(std::string_view pattern, const Words& line);

}  // namespace palsim

#endif  // TOOLS_PALSIM_SCENARIO_PATTERN_H_
