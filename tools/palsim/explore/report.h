// What an exploration came to. Reports of several machines are added up.
#ifndef TOOLS_PALSIM_EXPLORE_REPORT_H_
#define TOOLS_PALSIM_EXPLORE_REPORT_H_

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tools/palsim/explore/finding.h"

namespace palsim {

struct Report {
  std::uint64_t seeds = 0;
  std::uint64_t calls = 0;
  std::uint64_t faults = 0;
  std::uint64_t kills = 0;
  std::uint64_t restarts = 0;
  std::uint64_t time_ms = 0;                 // of the devices
  double seconds = 0;                        // of processors
  std::map<std::string, std::uint64_t> met;  // by property
  std::vector<Finding> findings;             // one for each property and what it says

  // One more seed.
  void Add(const Played& played);
  void Add(Finding finding);
  // What another one found. A finding that is there already is left out.
  void Add(const Report& other);
};

struct ReportCount {
  const char* name;
  std::uint64_t Report::*count;
};
inline constexpr std::array kReportCounts{
    ReportCount{"seeds", &Report::seeds},       ReportCount{"calls", &Report::calls},
    ReportCount{"faults", &Report::faults},     ReportCount{"kills", &Report::kills},
    ReportCount{"restarts", &Report::restarts}, ReportCount{"time_ms", &Report::time_ms},
};

[[nodiscard]] std::string ReportJson(const Report& report);
// Throws UsageError, with the name, for a text that is no report.
[[nodiscard]] Report ParseReport(const std::string& name, std::string_view json);
// As a person reads it.
[[nodiscard]] std::string ReportText(const Report& report);

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPLORE_REPORT_H_
