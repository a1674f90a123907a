#include "tools/palsim/scenario/journal_line.h"

#include <fmt/format.h>

namespace palsim {

// Where the rest does not fit, only the last star takes one character more: an earlier one would
// leave less for those behind it.
bool IsLike(std::string_view text, std::string_view pattern) {
  constexpr std::size_t kNowhere = std::string_view::npos;
  std::size_t star = kNowhere;
  std::size_t star_end = 0;  // how far in the text the star goes
  std::size_t place = 0;     // in the pattern
  for (std::size_t at = 0; at < text.size();) {
    if (place < pattern.size() && pattern[place] == '*') {
      star = place++;
      star_end = at;
    } else if (place < pattern.size() && pattern[place] == text[at]) {
      ++place;
      ++at;
    } else if (star != kNowhere) {
      place = star + 1;
      at = ++star_end;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', place) == kNowhere;
}

JournalLine::JournalLine(const Filled& filled, std::optional<std::uint32_t> process_id)
    : effect_(sim::EffectFromName(filled.Text("EFFECT")).value()),
      text_(filled.Text("TEXT")),
      process_id_(process_id) {}

bool JournalLine::Is(const sim::JournalEntry& entry) const {
  return entry.effect == effect_ && (!process_id_ || entry.process_id == *process_id_) &&
         IsLike(entry.text, text_);
}

std::string JournalLine::Description() const {
  const std::string by = process_id_ ? fmt::format(" by process {}", *process_id_) : "";
  return fmt::format("{} '{}'{}", sim::EffectName(effect_), text_, by);
}

}  // namespace palsim
