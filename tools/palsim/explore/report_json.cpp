// A report as a file, in JSON.
#include <algorithm>
#include <nlohmann/json.hpp>

#include "tools/palsim/explore/report.h"
#include "tools/palsim/usage_error.h"

namespace palsim {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(Finding, property, seed, how, command, scenario, lines)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(Report, seeds, calls, faults, kills, restarts, time_ms, met,
                                   more, findings)

namespace {

using Json = nlohmann::json;

// All its numbers count something, and its properties name files.
bool IsSound(const Json& json) {
  const auto is_count = [](const Json& value) {
    return !value.is_number() || value.is_number_unsigned();
  };
  const auto is_known = [](const Json& finding) {
    const auto name = finding.at("property").get<std::string>();
    return name == kWorldsEnd || std::ranges::count(Properties(), name, &PropertyRow::name) > 0;
  };
  return std::ranges::all_of(json.flatten(), is_count) &&
         std::ranges::all_of(json.at("findings"), is_known);
}

}  // namespace

std::string ReportJson(const Report& report) {
  constexpr int kIndent = 2;
  // A text that is no UTF-8 comes from a device whose strings are not.
  return Json(report).dump(kIndent, ' ', false, Json::error_handler_t::replace) + '\n';
}

Report ParseReport(const std::string& name, std::string_view text) {
  try {
    const Json json = Json::parse(text);
    if (IsSound(json)) return json.get<Report>();
  } catch (const Json::exception&) {
    // it has another form
  }
  throw UsageError(name + " is no report of 'palsim explore'");
}

}  // namespace palsim
