#include "tools/palsim/explore/report.h"

#include <fmt/format.h>

#include <algorithm>

namespace palsim {
namespace {

bool IsSame(const Finding& left, const Finding& right) {
  return left.property == right.property && left.how == right.how;
}

}  // namespace

void Report::Add(const Played& played) {
  ++seeds;
  calls += played.calls;
  faults += played.faults;
  kills += played.kills;
  restarts += played.restarts;
  time_ms += played.time_ms;
  const auto rows = Properties();
  for (std::size_t at = 0; at < rows.size(); ++at) {
    met[std::string(rows[at].name)] += played.met.at(at);
  }
}

void Report::Add(Finding finding) {
  const bool is_there =
      std::ranges::any_of(findings, [&](const Finding& known) { return IsSame(known, finding); });
  if (!is_there) findings.push_back(std::move(finding));
}

void Report::Add(const Report& other) {
  for (const ReportCount& row : kReportCounts) this->*row.count += other.*row.count;
  seconds += other.seconds;
  for (const auto& [name, count] : other.met) met[name] += count;
  for (const Finding& finding : other.findings) Add(finding);
}

std::string ReportText(const Report& report) {
  constexpr double kMsPerDay = 24.0 * 60 * 60 * 1000;
  std::string text;
  for (const Finding& finding : report.findings) {
    text += fmt::format("{}, seed {}: {}\n  {}\n", finding.property, finding.seed, finding.how,
                        finding.command);
    for (const std::string& line : finding.lines) text += "    " + line + '\n';
  }
  for (const auto& [name, count] : report.met) text += fmt::format("{:>14} {}\n", count, name);
  text += fmt::format(
      "{} seeds, {} calls, {} faults, {} kills, {} restarts, {:.1f} days of devices, {:.0f} s, {:.0f} "
      "calls a second\n{} findings\n",
      report.seeds, report.calls, report.faults, report.kills, report.restarts,
      static_cast<double>(report.time_ms) / kMsPerDay, report.seconds,
      report.seconds > 0 ? static_cast<double>(report.calls) / report.seconds : 0.0,
      report.findings.size());
  return text;
}

}  // namespace palsim
