// The command: which seeds, how many at once, and where findings and the report go.
#include "tools/palsim/explore/explore_command.h"

#include <fmt/format.h>
#include <sched.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <span>
#include <system_error>

#include "tools/palsim/commands.h"
#include "tools/palsim/explore/explore.h"
#include "tools/palsim/jobs.h"
#include "tools/palsim/program/program_copy.h"
#include "tools/palsim/usage_error.h"
#include "tools/streams.h"

namespace palsim {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr const char* kReportFile = "report.json";

// "90", "90s", "5m", "2h".
std::chrono::seconds ParseDuration(const std::string& text) {
  struct Unit {
    char letter;
    unsigned seconds;
  };
  constexpr Unit kUnits[] = {{'s', 1}, {'m', 60}, {'h', 3600}};
  std::size_t digits = 0;
  unsigned long number = 0;
  try {
    number = std::stoul(text, &digits);
  } catch (const std::exception&) {
    digits = 0;
  }
  constexpr unsigned long kMost = 1000000;
  if (digits > 0 && number > 0 && number < kMost) {
    if (digits == text.size()) return std::chrono::seconds(number);
    for (const Unit& unit : kUnits) {
      if (text.substr(digits) == std::string{unit.letter}) {
        return std::chrono::seconds(number * unit.seconds);
      }
    }
  }
  throw UsageError(fmt::format("'{}' is no time; write 90s, 5m or 2h", text));
}

// The seeds of one job: every `step`th from the first one on, up to the last or until the time is
// over.
struct Seeds {
  std::uint64_t next;
  std::uint64_t last;
  std::uint64_t step;
  std::optional<Clock::time_point> end;

  bool Take(std::uint64_t& seed) {
    if (next > last || (end && Clock::now() >= *end)) return false;
    seed = next;
    next += step;
    return true;
  }
};

// The seed that each job plays, which the parent process sees too: also of a job that crashes.
class SeedsUnderWay {
 public:
  explicit SeedsUnderWay(std::size_t jobs) : bytes_(jobs * sizeof(std::uint64_t)) {
    void* const shared =
        mmap(nullptr, bytes_, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED) throw std::system_error(errno, std::generic_category(), "mmap");
    seeds_ = {static_cast<std::uint64_t*>(shared), jobs};
  }
  ~SeedsUnderWay() { munmap(seeds_.data(), bytes_); }
  SeedsUnderWay(const SeedsUnderWay&) = delete;
  SeedsUnderWay& operator=(const SeedsUnderWay&) = delete;
  std::uint64_t& operator[](std::size_t job) const { return seeds_[job]; }

 private:
  std::size_t bytes_;
  std::span<std::uint64_t> seeds_;
};

// A world that crashes, or does not come to its end, takes its job with it.
Finding LostWorld(std::uint64_t seed, const std::string& error, const WorldOptions& options) {
  return {.property = "worlds-end",
          .seed = seed,
          .how = error,
          .command = CommandOf(seed, options),
          .scenario = {},
          .lines = {}};
}

// Threads of a device take turns: on one processor they do so without waking another one.
void StayOnOneProcessor(std::size_t job) {
  cpu_set_t allowed;
  if (sched_getaffinity(0, sizeof(allowed), &allowed) != 0) return;
  std::size_t wanted = job % static_cast<std::size_t>(CPU_COUNT(&allowed));
  for (std::size_t processor = 0; processor < CPU_SETSIZE; ++processor) {
    if (!CPU_ISSET(processor, &allowed) || wanted-- > 0) continue;
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(processor, &one);
    static_cast<void>(sched_setaffinity(0, sizeof(one), &one));
    return;
  }
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
  if (!folder.empty()) {
    fs::create_directories(folder);
    Write(folder, report);
  }
  fmt::print("{}", tools::Printable(ReportText(report)));
  return report.findings.empty() ? kSuccess : kFailure;
}

}  // namespace

int Explore(const ExploreOptions& options) {
  const Shard shard = ParseShard(options.shard);
  const SeedRange range = ParseSeeds(options.seeds);
  const unsigned jobs = options.jobs == 0 ? ProcessorCount() : options.jobs;
  const std::uint64_t step = std::uint64_t{jobs} * shard.count;
  std::optional<Clock::time_point> end;
  if (!options.time.empty()) end = Clock::now() + ParseDuration(options.time);
  const std::uint64_t last = end && options.seeds == kDefaultSeeds ? UINT64_MAX - step : range.last;
  // What cannot be read is said at once.
  static_cast<void>(MakeWorld(range.first, options.world));
  if (!options.world.program.empty()) static_cast<void>(LoadProgram(options.world.program));

  Report report;
  const SeedsUnderWay under_way(jobs);
  constexpr unsigned kAWeek = 7 * 24 * 60 * 60;
  constexpr unsigned kMostSecondsOfASeed = 300;
  RunJobs(
      {.count = jobs, .at_once = jobs, .most_seconds = kAWeek},
      [&](std::size_t job) {
        StayOnOneProcessor(job + static_cast<std::size_t>(getppid()));
        Seeds seeds{.next = range.first + shard.number - 1 + job * shard.count,
                    .last = last,
                    .step = step,
                    .end = end};
        return ReportJson(ExploreSeeds(options.world, [&](std::uint64_t& seed) {
          const bool goes_on = seeds.Take(seed);
          if (goes_on) under_way[job] = seed;
          alarm(goes_on ? kMostSecondsOfASeed : 0);
          return goes_on;
        }));
      },
      [&](std::size_t job, const JobEnd& ended) {
        if (ended.error.empty()) return report.Add(ParseReport("a job's answer", ended.answer));
        report.Add(LostWorld(under_way[job], ended.error, options.world));
      });
  return Show(report, options.out);
}

int MergeReports(const std::vector<std::string>& folders, const std::string& out) {
  Report report;
  for (const std::string& folder : folders) {
    const std::string file = fs::path(folder) / kReportFile;
    report.Add(ParseReport(file, tools::ReadInput(file)));
  }
  return Show(report, out);
}

void PrintProperties() {
  for (const PropertyRow& row : Properties()) fmt::print("  {:<26} {}\n", row.name, row.sentence);
}

}  // namespace palsim
