// A report as a file, in JSON.
#include <nlohmann/json.hpp>

#include "tools/palsim/explore/report.h"
#include "tools/palsim/usage_error.h"

namespace palsim {
namespace {

using Json = nlohmann::json;

struct TextRow {
  const char* name;
  std::string Finding::*text;
};
constexpr TextRow kTexts[] = {
    {"property", &Finding::property},
    {"how", &Finding::how},
    {"command", &Finding::command},
    {"scenario", &Finding::scenario},
};

Json ToJson(const Finding& finding) {
  Json json;
  for (const TextRow& row : kTexts) json[row.name] = finding.*row.text;
  json["seed"] = finding.seed;
  json["lines"] = finding.lines;
  return json;
}

Finding FindingFrom(const Json& json) {
  Finding finding;
  for (const TextRow& row : kTexts) finding.*row.text = json.at(row.name).get<std::string>();
  finding.seed = json.at("seed").get<std::uint64_t>();
  finding.lines = json.at("lines").get<std::vector<std::string>>();
  return finding;
}

}  // namespace

std::string ReportJson(const Report& report) {
  constexpr int kIndent = 2;
  Json json;
  for (const ReportCount& row : kReportCounts) json[row.name] = report.*row.count;
  json["seconds"] = report.seconds;
  json["met"] = report.met;
  json["findings"] = Json::array();
  for (const Finding& finding : report.findings) json["findings"].push_back(ToJson(finding));
  // A text that is no UTF-8 comes from a device whose strings are not.
  return json.dump(kIndent, ' ', false, Json::error_handler_t::replace) + '\n';
}

Report ParseReport(const std::string& name, std::string_view text) try {
  const Json json = Json::parse(text);
  Report report;
  for (const ReportCount& row : kReportCounts) {
    report.*row.count = json.at(row.name).get<std::uint64_t>();
  }
  report.seconds = json.at("seconds").get<double>();
  report.met = json.at("met").get<std::map<std::string, std::uint64_t>>();
  for (const Json& finding : json.at("findings")) report.findings.push_back(FindingFrom(finding));
  return report;
} catch (const Json::exception&) {
  throw UsageError(name + " is no report of 'palsim explore'");
}

}  // namespace palsim
