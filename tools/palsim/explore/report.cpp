#include "tools/palsim/explore/report.h"

#include <fmt/format.h>

#include <algorithm>

namespace palsim {
namespace {

// Each is made small, which takes longer than to find it.
constexpr std::ptrdiff_t kMostOfAProperty = 3;

bool IsLeftOut(const std::vector<Finding>& known, const Finding& finding) {
  return std::ranges::count(known, finding.property, &Finding::property) >= kMostOfAProperty ||
         std::ranges::any_of(known, [&](const Finding& other) {
           return other.property == finding.property && other.how == finding.how;
         });
}

}  // namespace

void Report::Add(const Report& later) {
  seeds += later.seeds;
  calls += later.calls;
  faults += later.faults;
  kills += later.kills;
  restarts += later.restarts;
  time_ms += later.time_ms;
  for (const auto& [name, count] : later.met) met[name] += count;
  for (const auto& [name, count] : later.more) more[name] += count;
  for (const Finding& finding : later.findings) {
    if (IsLeftOut(findings, finding)) {
      ++more[finding.property];
    } else {
      findings.push_back(finding);
    }
  }
}

Report PlaySeed(std::uint64_t seed, const WorldOptions& options) {
  const World world = MakeWorld(seed, options);
  const Played played = Play(*world.sample, world.moves, Properties());
  Report report{.seeds = 1,
                .calls = played.calls,
                .faults = played.faults,
                .kills = played.kills,
                .restarts = played.restarts,
                .time_ms = played.time_ms,
                .met = {},
                .more = {},
                .findings = {}};
  for (std::size_t at = 0; at < played.met.size(); ++at) {
    report.met[std::string(Properties()[at].name)] = played.met[at];
  }
  if (played.violation) {
    report.findings = {{.property = std::string(played.violation->property),
                        .seed = seed,
                        .how = played.violation->how,
                        .command = CommandOf(seed, options)}};
  }
  return report;
}

std::string ReportText(const Report& report) {
  constexpr double kMsPerDay = 24.0 * 60 * 60 * 1000;
  std::string text;
  for (const Finding& finding : report.findings) {
    text += fmt::format("{}, seed {}: {}\n  {}\n", finding.property, finding.seed, finding.how,
                        finding.command);
    for (const std::string& line : finding.lines) text += "    " + line + '\n';
  }
  for (const auto& [name, count] : report.more) text += fmt::format("{} more of {}\n", count, name);
  for (const auto& [name, count] : report.met) text += fmt::format("{:>14} {}\n", count, name);
  text += fmt::format(
      "{} seeds, {} calls, {} faults, {} kills, {} restarts, {:.1f} days of devices\n{} findings\n",
      report.seeds, report.calls, report.faults, report.kills, report.restarts,
      static_cast<double>(report.time_ms) / kMsPerDay, report.findings.size());
  return text;
}

}  // namespace palsim
