// One step of a world: a statement of a scenario. Calls, which are most of them, are kept in parts,
// so that they can be played without reading a text.
#ifndef TOOLS_PALSIM_EXPLORE_MOVE_H_
#define TOOLS_PALSIM_EXPLORE_MOVE_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace palsim {

struct Move {
  enum class Kind : std::uint8_t { kCall, kBegin, kStatement };

  Kind kind = Kind::kStatement;
  std::string process;  // of a call, or of a statement about a process; empty: the device
  std::string text;     // the export's name; or the whole statement
  std::vector<std::string> arguments{};
  std::string as{};  // of a call or a program's run that is begun

  // As it stands in a scenario.
  [[nodiscard]] std::string Text() const;
  bool operator==(const Move&) const = default;
};
using Moves = std::vector<Move>;

// A word as a scenario has it: in quotes where it needs them.
[[nodiscard]] std::string WordText(std::string_view word);

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPLORE_MOVE_H_
