#include "tools/palsim/explore/move.h"

#include <fmt/format.h>

namespace palsim {

std::string WordText(std::string_view word) {
  if (!word.empty() && word.find_first_of(" \t#\"") == std::string_view::npos) {
    return std::string(word);
  }
  std::string text = "\"";
  for (const char letter : word) text += letter == '"' ? std::string("\"\"") : std::string{letter};
  return text + '"';
}

std::string Move::Text() const {
  if (kind == Kind::kStatement) return text;
  std::string line =
      fmt::format("{} {} {}", process, kind == Kind::kCall ? "calls" : "begins", text);
  for (const std::string& argument : arguments) line += ' ' + WordText(argument);
  return kind == Kind::kCall ? line : line + " as " + as;
}

}  // namespace palsim
