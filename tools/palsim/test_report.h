// What a test of many cases found: for a person, and for other programs.
#ifndef TOOLS_PALSIM_TEST_REPORT_H_
#define TOOLS_PALSIM_TEST_REPORT_H_

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace palsim {

// Members stand in the order in which they were added.
using Json = nlohmann::ordered_json;

// The cases with their counts: "tests", "passed", "failed", "errors", "skipped". Each case has
// "scenario", "device", "seed" where there is one, "result", "seconds", "expectations", "messages";
// and one that went wrong "again", the command that repeats it, and "journal", its last lines.
[[nodiscard]] Json MakeReport(std::vector<Json> cases);

// What went wrong, case by case, and the counts.
[[nodiscard]] std::string SummaryText(const Json& report);
// A suite for each scenario, as CI systems read them.
[[nodiscard]] std::string JUnitText(const Json& report);

}  // namespace palsim

#endif  // TOOLS_PALSIM_TEST_REPORT_H_
