// The command: which seeds, how many at once, and where findings and the report go.
#include "tools/palsim/explore/explore_command.h"

#include <fmt/format.h>
#include <sched.h>
#include <sys/times.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <deque>
#include <filesystem>

#include "tools/palsim/commands.h"
#include "tools/palsim/device_lock.h"
#include "tools/palsim/explore/report.h"
#include "tools/palsim/interrupts.h"
#include "tools/palsim/jobs.h"
#include "tools/palsim/program/program_copy.h"
#include "tools/palsim/usage_error.h"
#include "tools/streams.h"

namespace palsim {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr const char* kReportFile = "report.json";
constexpr const char* kDeviceFolder = "device";

// Threads of a device take turns: on one processor they do so without waking another one.
void StayOnThisProcessor() {
  cpu_set_t own;
  CPU_ZERO(&own);
  CPU_SET(sched_getcpu(), &own);
  static_cast<void>(sched_setaffinity(0, sizeof(own), &own));
}

// The folder of a search, which nobody else writes meanwhile. Nothing in it is written over.
std::optional<sim::FolderLock> TakeFolder(const std::string& folder) {
  if (folder.empty()) return std::nullopt;
  fs::create_directories(folder);
  std::optional<sim::FolderLock> lock = LockFolder(folder, Use::kChange);
  if (fs::is_empty(folder)) return lock;
  throw UsageError(folder + " is not empty; findings and report need a folder of their own");
}

void Write(const fs::path& folder, const Report& report) {
  for (const Finding& finding : report.findings) {
    if (finding.scenario.empty()) continue;
    tools::WriteOutput(folder / fmt::format("{}-{}.scenario", finding.property, finding.seed),
                       finding.scenario);
  }
  tools::WriteOutput(folder / kReportFile, ReportJson(report));
}

int Show(const Report& report, const std::string& folder) {
  tools::PrintAtOnce(tools::Printable(ReportText(report)));
  if (!folder.empty()) Write(folder, report);
  return report.findings.empty() ? kSuccess : kFailure;
}

// What one job does: it plays worlds, or makes the world of a finding small.
struct Part {
  std::uint64_t first = 0;  // the number of a world, from 0
  std::uint64_t count = 0;
  std::optional<std::size_t> finding{};
};

class Search {
 public:
  // Throws UsageError.
  explicit Search(const ExploreOptions& options)
      : options_(options),
        shard_(ParseShard(options.shard)),
        jobs_(options.jobs == 0 ? ProcessorCount() : options.jobs) {
    const SeedRange range = ParseSeeds(options.seeds);
    first_seed_ = range.first + shard_.number - 1;
    if (first_seed_ <= range.last) worlds_ = (range.last - first_seed_) / shard_.count + 1;
    if (options.seconds > 0 && options.seeds == kDefaultSeeds) worlds_ = UINT64_MAX;
    constexpr std::uint64_t kSteps = 60'000;  // about a second
    worlds_of_a_job_ =
        std::clamp<std::uint64_t>(kSteps / options.world.steps, 1, worlds_ / jobs_ + 1);
  }

  // False where `stop` has ended it.
  bool Run(int stop) {
    if (options_.seconds > 0) end_ = Clock::now() + std::chrono::seconds(options_.seconds);
    constexpr unsigned kMostSeconds = 300;
    return RunJobs(
        {.at_once = jobs_, .most_seconds = kMostSeconds, .stop = stop}, [&] { return Next(); },
        [&](std::size_t job) { return Work(parts_[job]); },
        [&](std::size_t job, const JobEnd& ended) { Ended(parts_[job], ended); });
  }

  // If the search was ended early, this has also worlds that ended before those of lower seeds.
  Report TakeReport() {
    for (const auto& [world, report] : ended_) report_.Add(report);
    return std::move(report_);
  }

 private:
  [[nodiscard]] std::uint64_t SeedOf(std::uint64_t world) const {
    return first_seed_ + world * shard_.count;
  }

  std::optional<std::size_t> Next() {
    if (waiting_.empty()) {
      if (begun_ == worlds_ || (end_ && Clock::now() >= *end_)) return std::nullopt;
      waiting_.push_back({begun_, std::min(worlds_of_a_job_, worlds_ - begun_)});
      begun_ += waiting_.back().count;
    }
    parts_.push_back(waiting_.front());
    waiting_.pop_front();
    return parts_.size() - 1;
  }

  // In a process of its own.
  [[nodiscard]] std::string Work(const Part& part) const {
    StayOnThisProcessor();
    Report report;
    if (part.finding) {
      report.findings = {MakeSmall(report_.findings[*part.finding], options_.world)};
    }
    for (std::uint64_t world = part.first; world < part.first + part.count; ++world) {
      report.Add(PlaySeed(SeedOf(world), options_.world));
    }
    return ReportJson(report);
  }

  void Ended(const Part& part, const JobEnd& ended) {
    if (part.finding) return KeepSmall(report_.findings[*part.finding], ended);
    if (!ended.error.empty() && part.count > 1) return PlayEachAlone(part);
    ended_[part.first] = ended.error.empty() ? ParseReport("a job's answer", ended.answer)
                                             : LostWorld(SeedOf(part.first), ended.error);
    AddUp();
  }

  // A lost job takes its findings with it. Played alone, the world that caused it is lost again.
  void PlayEachAlone(const Part& part) {
    for (std::uint64_t at = 0; at < part.count; ++at) waiting_.push_back({part.first + at, 1});
  }

  [[nodiscard]] Report LostWorld(std::uint64_t seed, const std::string& error) const {
    Report report{.seeds = 1, .met = {}, .more = {}, .findings = {}};
    report.findings = {{.property = std::string(kWorldsEnd),
                        .seed = seed,
                        .how = error,
                        .command = CommandOf(seed, options_.world)}};
    return report;
  }

  // In the order of the seeds, whatever job has ended first: so the report is always the same.
  void AddUp() {
    for (auto next = ended_.begin(); next != ended_.end() && next->first == report_.seeds;) {
      const std::size_t known = report_.findings.size();
      report_.Add(next->second);
      for (std::size_t at = known; at < report_.findings.size(); ++at) {
        if (report_.findings[at].property != kWorldsEnd) waiting_.push_back({.finding = at});
      }
      next = ended_.erase(next);
    }
  }

  void KeepSmall(Finding& finding, const JobEnd& ended) {
    if (!ended.error.empty()) {
      finding.lines = {fmt::format("(its world could not be made small: {})", ended.error)};
      return;
    }
    finding = ParseReport("a job's answer", ended.answer).findings.at(0);
    try {
      if (!options_.out.empty()) Write(options_.out, report_);
    } catch (const std::exception&) {
      // the end of the search writes it again, and says what is wrong then
    }
  }

  const ExploreOptions& options_;
  Shard shard_;
  unsigned jobs_;
  std::uint64_t first_seed_ = 0;
  std::uint64_t worlds_ = 0;  // to be played, each with a number from 0
  std::uint64_t worlds_of_a_job_ = 1;
  std::uint64_t begun_ = 0;
  std::optional<Clock::time_point> end_;
  std::deque<Part> waiting_;
  std::vector<Part> parts_;                // by job
  std::map<std::uint64_t, Report> ended_;  // by the first world; not in the report yet
  Report report_;
};

// What cannot be read, or is in the way, is said before the first world.
std::optional<sim::FolderLock> Prepare(const ExploreOptions& options) {
  const fs::path device = options.world.device;
  const bool is_folder = fs::exists(device / "device.toml");
  std::optional<sim::FolderLock> device_lock;
  if (is_folder) device_lock.emplace(LockDevice(device, Use::kRead));
  ReadSamples(options.world);
  if (!options.world.program.empty()) static_cast<void>(LoadProgram(options.world.program));
  std::optional<sim::FolderLock> lock = TakeFolder(options.out);
  if (lock && is_folder) {
    fs::copy(device, fs::path(options.out) / kDeviceFolder, fs::copy_options::recursive);
  }
  return lock;
}

void PrintRate(std::uint64_t calls) {
  tms used{};
  times(&used);
  const auto ticks = static_cast<double>(used.tms_cutime + used.tms_cstime);
  const double seconds = ticks / static_cast<double>(sysconf(_SC_CLK_TCK));
  tools::PrintError("{:.1f} s of processors, {:.0f} calls a second\n", seconds,
                    seconds > 0 ? static_cast<double>(calls) / seconds : 0.0);
}

}  // namespace

int Explore(const ExploreOptions& options) {
  Search search(options);
  const Interrupts interrupts;
  const auto lock = Prepare(options);
  std::string ended_by;
  try {
    if (!search.Run(interrupts.descriptor())) ended_by = "a signal";
  } catch (const std::exception& error) {
    ended_by = error.what();
  }
  const Report report = search.TakeReport();
  PrintRate(report.calls);
  const int status = Show(report, options.out);
  if (ended_by.empty()) return status;
  tools::PrintError("palsim: the search was ended by {}\n", tools::Printable(ended_by));
  return kFailure;
}

int MergeReports(const std::vector<std::string>& folders, const std::string& out) {
  Report report;
  std::vector<fs::path> added;
  for (const std::string& folder : folders) {
    const std::string file = fs::path(folder) / kReportFile;
    report.Add(ParseReport(file, tools::ReadInput(file)));
    added.push_back(fs::canonical(folder));
    if (std::ranges::count(added, added.back()) > 1) {
      throw UsageError(folder + " is given twice");
    }
  }
  std::ranges::stable_sort(report.findings, {}, &Finding::seed);
  const auto lock = TakeFolder(out);
  return Show(report, out);
}

void PrintProperties() {
  for (const PropertyRow& row : Properties()) fmt::print("  {:<26} {}\n", row.name, row.sentence);
}

}  // namespace palsim
