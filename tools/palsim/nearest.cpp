#include "tools/palsim/nearest.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>

#include "platform/sim/text.h"

namespace palsim {

// Levenshtein's distance, row by row.
std::size_t LettersApart(std::string_view left, std::string_view right) {
  std::vector<std::size_t> row(right.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t index = 0; index < left.size(); ++index) {
    std::size_t diagonal = row[0]++;
    for (std::size_t at = 0; at < right.size(); ++at) {
      const bool same = sim::EqualNoCase(left.substr(index, 1), right.substr(at, 1));
      const std::size_t changed = diagonal + (same ? 0 : 1);
      diagonal = row[at + 1];
      row[at + 1] = std::min({changed, diagonal + 1, row[at] + 1});
    }
  }
  return row.back();
}

std::string DidYouMean(std::string_view typed, const std::vector<std::string_view>& names) {
  constexpr std::size_t kMost = 3;
  constexpr std::size_t kLongest = 100;  // of a word that a person types
  if (typed.size() > kLongest) return {};
  const auto apart = [typed](std::string_view name) { return LettersApart(typed, name); };
  const auto nearest = std::ranges::min_element(names, {}, apart);
  if (nearest == names.end() || apart(*nearest) > std::min(kMost, typed.size() / 2)) return {};
  return fmt::format("; did you mean {}?", *nearest);
}

}  // namespace palsim
