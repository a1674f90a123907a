// What an exploration came to. The reports of jobs and of machines are added up.
#ifndef TOOLS_PALSIM_EXPLORE_REPORT_H_
#define TOOLS_PALSIM_EXPLORE_REPORT_H_

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
  std::uint64_t time_ms = 0;                  // of the devices
  std::map<std::string, std::uint64_t> met;   // by property
  std::map<std::string, std::uint64_t> more;  // findings that were left out, by property
  std::vector<Finding> findings;              // the first of each property, with what they say

  // What later seeds came to.
  void Add(const Report& later);
};

// A violation in it is not made small.
[[nodiscard]] Report PlaySeed(std::uint64_t seed, const WorldOptions& options);

[[nodiscard]] std::string ReportJson(const Report& report);
// Throws UsageError, with the name, for a text that is no report.
[[nodiscard]] Report ParseReport(const std::string& name, std::string_view json);
// As a person reads it.
[[nodiscard]] std::string ReportText(const Report& report);

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPLORE_REPORT_H_
