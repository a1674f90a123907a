// Shows where two runs part.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <sstream>

#include "platform/sim/device_folder.h"
#include "tools/palsim/commands.h"
#include "tools/palsim/run_record.h"
#include "tools/palsim/usage_error.h"
#include "tools/streams.h"

namespace palsim {
namespace {

constexpr std::size_t kLinesBefore = 3;
constexpr std::size_t kLinesFromThere = 3;

struct ComparedRun {
  std::string name;  // "run 3: A good read"
  std::vector<sim::JournalEntry> entries;
};

// Of what a word stands for: a number for a run of the device, another word for a file.
std::optional<std::size_t> RunNumber(const std::filesystem::path& folder, const std::string& word) {
  std::size_t number = 0;
  const char* const end = word.data() + word.size();
  const auto [last, error] = std::from_chars(word.data(), end, number);
  if (folder.empty() || error != std::errc() || last != end) return std::nullopt;
  return number;
}

RunRecord RunOf(const std::filesystem::path& folder, std::size_t number) {
  std::vector<RunRecord> runs = ReadRuns(folder);
  if (number == 0 || number > runs.size()) {
    throw UsageError(
        fmt::format("{} has no run {}; it has {}", folder.string(), number, runs.size()));
  }
  return std::move(runs[number - 1]);
}

RunRecord LastRunIn(const std::string& file) {
  std::istringstream text(tools::ReadInput(file));
  std::vector<RunRecord> runs = ReadRuns(text);
  if (runs.empty()) throw UsageError(tools::InputName(file) + " has no run");
  return std::move(runs.back());
}

// With the times since the run's start.
ComparedRun Read(const std::filesystem::path& folder, const std::string& word) try {
  const std::optional<std::size_t> number = RunNumber(folder, word);
  RunRecord run = number ? RunOf(folder, *number) : LastRunIn(word);
  for (sim::JournalEntry& entry : run.entries) {
    entry.time_ms -= std::min(entry.time_ms, run.start_ms);
  }
  const std::string name = number ? fmt::format("run {}", *number) : tools::InputName(word);
  return {fmt::format("{}: {}", name, run.title), std::move(run.entries)};
} catch (const sim::DeviceFolderError& error) {
  throw UsageError(error.what());
}

void PrintLines(const char* mark, const ComparedRun& run, std::size_t from, std::size_t to) {
  for (std::size_t at = from; at < std::min(to, run.entries.size()); ++at) {
    fmt::print("{}{}\n", mark, sim::ToLine(run.entries[at]));
  }
  if (to > run.entries.size()) fmt::print("{} the run ends here\n", mark);
}

void PrintCounts(const ComparedRun& left, const ComparedRun& right) {
  std::map<sim::Effect, std::array<std::size_t, 2>> counts;
  for (const sim::JournalEntry& entry : left.entries) ++counts[entry.effect][0];
  for (const sim::JournalEntry& entry : right.entries) ++counts[entry.effect][1];
  fmt::print("\n{:<12}{:>8}{:>8}\n", "lines", left.entries.size(), right.entries.size());
  for (const auto& [effect, count] : counts) {
    fmt::print("{:<12}{:>8}{:>8}\n", sim::EffectName(effect), count[0], count[1]);
  }
}

}  // namespace

int Diff(const std::filesystem::path& folder, const DiffOptions& options) {
  const ComparedRun left = Read(folder, options.left);
  const ComparedRun right = Read(folder, options.right);
  const auto [at, other] =
      std::ranges::mismatch(left.entries, right.entries, {}, &sim::ToLine, &sim::ToLine);
  if (at == left.entries.end() && other == right.entries.end()) {
    fmt::print("the same {} lines\n", left.entries.size());
    return kSuccess;
  }
  const auto line = static_cast<std::size_t>(at - left.entries.begin());
  fmt::print("- {}\n+ {}\nThey part at line {}:\n", left.name, right.name, line + 1);
  PrintLines("  ", left, line - std::min(line, kLinesBefore), line);
  PrintLines("- ", left, line, line + kLinesFromThere);
  PrintLines("+ ", right, line, line + kLinesFromThere);
  PrintCounts(left, right);
  return kFailure;
}

}  // namespace palsim
