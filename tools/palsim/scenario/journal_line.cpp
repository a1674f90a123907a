#include "tools/palsim/scenario/journal_line.h"

#include <fmt/format.h>

namespace palsim {

bool IsLike(std::string_view text, std::string_view pattern) {
  const std::size_t star = pattern.find('*');
  if (star == std::string_view::npos) return text == pattern;
  if (text.substr(0, star) != pattern.substr(0, star)) return false;
  const std::string_view rest = pattern.substr(star + 1);
  for (std::size_t from = star; from <= text.size(); ++from) {
    if (IsLike(text.substr(from), rest)) return true;
  }
  return false;
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
