// A run in the journal: what was played in lines that begin with "=", then its entries.
#ifndef TOOLS_PALSIM_RUN_RECORD_H_
#define TOOLS_PALSIM_RUN_RECORD_H_

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sim/journal.h"

namespace palsim {

struct RunRecord {
  std::string title;               // what was played: a scenario's title, or the command
  std::vector<std::string> about;  // its paragraphs
  std::string device;              // "rm21: A handheld with ..."
  std::uint64_t start_ms = 0;      // on the device's clock
  std::uint64_t end_ms = 0;
  // The levels at the start, where the device has an audio driver.
  std::optional<std::uint32_t> volume;
  std::optional<std::uint32_t> gain;
  std::vector<sim::JournalEntry> entries;
};

inline constexpr std::string_view kRunHeading = "= run ";  // the first line, before the title

void WriteRun(std::ostream& file, const RunRecord& run);
// Lines that are no entries are left out; entries before the first run's heading are a run without
// one.
[[nodiscard]] std::vector<RunRecord> ReadRuns(std::istream& file);

}  // namespace palsim

#endif  // TOOLS_PALSIM_RUN_RECORD_H_
