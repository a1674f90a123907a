#include "tools/palsim/run_record.h"

#include <algorithm>
#include <charconv>
#include <istream>
#include <ostream>
#include <string_view>

namespace palsim {
namespace {

// What a heading's line says: "= title A good read".
struct HeadingRow {
  std::string_view name;
  void (*read)(RunRecord& run, std::string_view text);
};

template <class Number>
Number NumberIn(std::string_view text) {
  Number number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

constexpr std::string_view kRun = "run";
constexpr HeadingRow kHeadings[] = {
    {kRun, [](RunRecord& run, std::string_view text) { run.title = text; }},
    {"about", [](RunRecord& run, std::string_view text) { run.about.emplace_back(text); }},
    {"device", [](RunRecord& run, std::string_view text) { run.device = text; }},
    {"start",
     [](RunRecord& run, std::string_view text) { run.start_ms = NumberIn<std::uint64_t>(text); }},
    {"end",
     [](RunRecord& run, std::string_view text) { run.end_ms = NumberIn<std::uint64_t>(text); }},
    {"volume",
     [](RunRecord& run, std::string_view text) { run.volume = NumberIn<std::uint32_t>(text); }},
    {"gain",
     [](RunRecord& run, std::string_view text) { run.gain = NumberIn<std::uint32_t>(text); }},
};

void ReadHeading(std::vector<RunRecord>& runs, std::string_view line) {
  const std::string_view name = line.substr(0, line.find(' '));
  line.remove_prefix(std::min(name.size() + 1, line.size()));
  if (name == kRun) runs.emplace_back();
  for (const HeadingRow& row : kHeadings) {
    if (row.name == name && !runs.empty()) row.read(runs.back(), line);
  }
}

void AddEntry(std::vector<RunRecord>& runs, sim::JournalEntry entry) {
  if (runs.empty()) runs.emplace_back().start_ms = entry.time_ms;
  runs.back().end_ms = std::max(runs.back().end_ms, entry.time_ms);
  runs.back().entries.push_back(std::move(entry));
}

}  // namespace

void WriteRun(std::ostream& file, const RunRecord& run) {
  file << kRunHeading << sim::Escape(run.title) << '\n';
  for (const std::string& about : run.about) file << "= about " << sim::Escape(about) << '\n';
  file << "= device " << sim::Escape(run.device) << '\n';
  file << "= start " << run.start_ms << "\n= end " << run.end_ms << '\n';
  if (run.volume) file << "= volume " << *run.volume << '\n';
  if (run.gain) file << "= gain " << *run.gain << '\n';
  for (const sim::JournalEntry& entry : run.entries) file << sim::ToLine(entry) << '\n';
}

std::vector<RunRecord> ReadRuns(std::istream& file) {
  constexpr std::string_view kHeading = "= ";
  std::vector<RunRecord> runs;
  for (std::string line; std::getline(file, line);) {
    line = sim::Escape(line);  // a hand may have edited it
    if (line.starts_with(kHeading)) {
      ReadHeading(runs, std::string_view(line).substr(kHeading.size()));
    } else if (std::optional<sim::JournalEntry> entry = sim::FromLine(line)) {
      AddEntry(runs, std::move(*entry));
    }
  }
  return runs;
}

}  // namespace palsim
