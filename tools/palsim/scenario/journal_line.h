// A line of the journal that a scenario waits for or expects.
#ifndef TOOLS_PALSIM_SCENARIO_JOURNAL_LINE_H_
#define TOOLS_PALSIM_SCENARIO_JOURNAL_LINE_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/sim/journal.h"
#include "tools/palsim/scenario/pattern.h"

namespace palsim {

// Whether a text is as a pattern has it, in which * stands for any text.
[[nodiscard]] bool IsLike(std::string_view text, std::string_view pattern);

class JournalLine {
 public:
  // By a statement's EFFECT and TEXT.
  explicit JournalLine(const Filled& filled,
                       std::optional<std::uint32_t> process_id = std::nullopt);
  JournalLine(sim::Effect effect, std::string text, std::optional<std::uint32_t> process_id)
      : effect_(effect), text_(std::move(text)), process_id_(process_id) {}

  [[nodiscard]] sim::Effect effect() const { return effect_; }
  [[nodiscard]] bool Is(const sim::JournalEntry& entry) const;
  // "led 'LED 3 on'", "mutex 'DVLORQPAL_BEEP_MUTEX taken' by process 2".
  [[nodiscard]] std::string Description() const;

 private:
  sim::Effect effect_;
  std::string text_;
  std::optional<std::uint32_t> process_id_;
};

}  // namespace palsim

#endif  // TOOLS_PALSIM_SCENARIO_JOURNAL_LINE_H_
