#include "tools/palsim/scenario/pattern.h"

#include <algorithm>
#include <span>
#include <stdexcept>

#include "tools/palsim/nearest.h"
#include "tools/palsim/usage_error.h"

namespace palsim {
namespace {

constexpr std::string_view kBlanks = " \t\r";

void SkipBlanks(std::string_view& line) {
  line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
}

Word TakeQuoted(std::string_view& line) {
  Word word{.text = {}, .quoted = true};
  for (line.remove_prefix(1);;) {
    const std::size_t quote = line.find('"');
    if (quote == std::string_view::npos) throw UsageError("a text has no closing quote");
    word.text += line.substr(0, quote);
    line.remove_prefix(quote + 1);
    if (!line.starts_with('"')) return word;
    word.text += '"';
    line.remove_prefix(1);
  }
}

Word TakeWord(std::string_view& line) {
  if (line.starts_with('"')) return TakeQuoted(line);
  const std::size_t length = std::min(line.find_first_of(kBlanks), line.size());
  Word word{.text = std::string(line.substr(0, length))};
  line.remove_prefix(length);
  return word;
}

std::vector<std::string_view> PatternWords(std::string_view pattern) {
  std::vector<std::string_view> words;
  while (!pattern.empty()) {
    const std::size_t length = std::min(pattern.find(' '), pattern.size());
    words.push_back(pattern.substr(0, length));
    pattern.remove_prefix(std::min(length + 1, pattern.size()));
  }
  return words;
}

bool IsFilledIn(std::string_view word) {
  return word.front() >= 'A' && word.front() <= 'Z';
}

bool Stands(std::string_view word, const Word& in_line) {
  return !in_line.quoted && in_line.text == word;
}

// Also where it is mistyped by a letter.
bool MayStand(std::string_view word, const Word& in_line) {
  constexpr std::size_t kLeastLetters = 4;
  return Stands(word, in_line) ||
         (!in_line.quoted && word.size() >= kLeastLetters &&
          in_line.text.size() <= word.size() + 1 && LettersApart(word, in_line.text) == 1);
}

using PatternRest = std::span<const std::string_view>;
using LineRest = std::span<const Word>;

bool Match(PatternRest pattern, LineRest line, Filled& filled);

// Fewer words first, so that what follows in the pattern is found where it stands first. Words are
// taken on the way back, where all else has matched: the last first.
bool MatchFilledIn(PatternRest pattern, LineRest line, Filled& filled) {
  std::string_view name = pattern.front();
  const bool any_number = name.ends_with("...");
  if (any_number) name.remove_suffix(3);
  const std::size_t least = any_number ? 0 : (name == "TIME" || name == "DELAY" ? 2 : 1);
  const std::size_t most = any_number ? line.size() : least;
  for (std::size_t count = least; count <= std::min(most, line.size()); ++count) {
    if (!Match(pattern.subspan(1), line.subspan(count), filled)) continue;
    filled.AddBefore(name, Words(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(count)));
    return true;
  }
  return false;
}

bool Match(PatternRest pattern, LineRest line, Filled& filled) {
  if (pattern.empty()) return line.empty();
  if (IsFilledIn(pattern.front())) return MatchFilledIn(pattern, line, filled);
  if (line.empty() || !Stands(pattern.front(), line.front())) return false;
  return Match(pattern.subspan(1), line.subspan(1), filled);
}

}  // namespace

Words SplitWords(std::string_view line) {
  Words words;
  for (SkipBlanks(line); !line.empty() && line.front() != '#'; SkipBlanks(line)) {
    words.push_back(TakeWord(line));
  }
  return words;
}

std::string Joined(const Words& words) {
  std::string text;
  for (const Word& word : words) {
    if (!text.empty()) text += ' ';
    text += word.text;
  }
  return text;
}

bool Filled::Has(std::string_view name) const {
  return std::ranges::find(parts_, name, [](const auto& part) { return part.first; }) !=
         parts_.end();
}

const Words& Filled::words(std::string_view name) const {
  for (const auto& [part, words] : parts_) {
    if (part == name) return words;
  }
  throw std::logic_error("a statement has no " + std::string(name));
}

bool Matches(std::string_view pattern, const Words& line, Filled& filled) {
  filled = {};
  return Match(PatternWords(pattern), line, filled);
}

std::size_t WordsInCommon(std::string_view pattern, const Words& line) {
  constexpr std::size_t kMostWords = 30;  // of a line that a person has typed
  const LineRest begin(line.data(), std::min(line.size(), kMostWords));
  std::size_t count = 0;
  for (const std::string_view word : PatternWords(pattern)) {
    if (IsFilledIn(word)) continue;
    const bool found =
        std::ranges::any_of(begin, [&](const Word& in_line) { return MayStand(word, in_line); });
    count += found ? 1 : 0;
  }
  return count;
}

}  // namespace palsim
