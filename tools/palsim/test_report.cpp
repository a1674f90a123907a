#include "tools/palsim/test_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <pugixml.hpp>
#include <sstream>

namespace palsim {
namespace {

struct Count {
  const char* result;
  const char* name;
};
constexpr Count kCounts[] = {
    {"passed", "passed"}, {"failed", "failed"}, {"error", "errors"}, {"skipped", "skipped"}};

bool WentWrong(const Json& test) {
  return test["result"] == "failed" || test["result"] == "error";
}

// "rm21, seed 5".
std::string NameOf(const Json& test) {
  std::string name = test["device"];
  if (test.contains("seed")) name += fmt::format(", seed {}", test["seed"].get<std::uint32_t>());
  return name;
}

std::string Lines(const Json& test, const char* member) {
  std::string text;
  if (!test.contains(member)) return text;
  for (const std::string line : test[member]) text += line + "\n";
  return text;
}

// XML knows no way to write the two.
std::string ForXml(std::string text) {
  for (const std::string_view none : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"}) {
    for (std::size_t at = 0; (at = text.find(none, at)) != std::string::npos;) {
      text.replace(at, none.size(), "\xEF\xBF\xBD");
    }
  }
  return text;
}

void Set(pugi::xml_node node, const char* name, const std::string& text) {
  node.append_attribute(name).set_value(ForXml(text).c_str());
}

void AddText(pugi::xml_node node, const char* name, const std::string& text) {
  if (!text.empty()) node.append_child(name).text().set(ForXml(text).c_str());
}

// "scenarios.good-read": a path as packages of classes are written.
std::string ClassName(const std::string& file) {
  std::string name;
  std::filesystem::path path(file);
  path.replace_extension();
  for (const auto& part : path) {
    if (part == "/" || part == "." || part == "..") continue;
    name += (name.empty() ? "" : ".") + part.string();
  }
  return name;
}

void AddCase(pugi::xml_node suite, const Json& test) {
  const std::string file = test["scenario"];
  pugi::xml_node node = suite.append_child("testcase");
  Set(node, "classname", ClassName(file));
  Set(node, "name", NameOf(test));
  Set(node, "file", file);
  Set(node, "time", fmt::format("{:.3f}", test["seconds"].get<double>()));
  const std::string messages = Lines(test, "messages");
  if (test["result"] == "passed") return AddText(node, "system-out", messages);
  const bool failed = test["result"] == "failed";
  pugi::xml_node why = node.append_child(failed                        ? "failure"
                                         : test["result"] == "skipped" ? "skipped"
                                                                       : "error");
  Set(why, "message", messages.substr(0, messages.find('\n')));
  if (!WentWrong(test)) return;
  Set(why, "type", failed ? "expectation" : "error");
  const std::string again = test["again"];
  why.text().set(ForXml(fmt::format("{}again: {}\n", messages, again)).c_str());
  AddText(node, "system-out", Lines(test, "journal"));
}

// What the two kinds of heading have in common.
void SetCounts(pugi::xml_node node, const Json& report) {
  double seconds = 0;
  for (const Json& test : report["cases"]) seconds += test["seconds"].get<double>();
  for (const char* count : {"tests", "failed", "errors", "skipped"}) {
    const char* name = std::string_view(count) == "failed" ? "failures" : count;
    node.append_attribute(name) = report[count].get<unsigned>();
  }
  Set(node, "time", fmt::format("{:.3f}", seconds));
}

}  // namespace

Json MakeReport(std::vector<Json> cases) {
  Json report{{"tests", cases.size()}};
  for (const Count& count : kCounts) {
    report[count.name] = std::ranges::count_if(
        cases, [&](const Json& test) { return test["result"] == count.result; });
  }
  report["cases"] = std::move(cases);
  return report;
}

std::string SummaryText(const Json& report) {
  constexpr std::size_t kMostShown = 50;
  std::string text;
  std::size_t wrong = 0;
  for (const Json& test : report["cases"]) {
    if (!WentWrong(test) || ++wrong > kMostShown) continue;
    text += fmt::format("{}: {} on {}\n", test["result"].get<std::string>(),
                        test["scenario"].get<std::string>(), NameOf(test));
    for (const std::string message : test["messages"]) text += fmt::format("  {}\n", message);
    text += fmt::format("  again: {}\n", test["again"].get<std::string>());
  }
  if (wrong > kMostShown) {
    text += fmt::format("and {} more; --json lists them all\n", wrong - kMostShown);
  }
  for (const Count& count : kCounts) {
    text += fmt::format("{}{} {}", &count == kCounts ? "" : ", ",
                        report[count.name].get<std::size_t>(), count.name);
  }
  return text + "\n";
}

std::string JUnitText(const Json& report) {
  pugi::xml_document document;
  pugi::xml_node root = document.append_child("testsuites");
  Set(root, "name", "palsim test");
  const Json& cases = report["cases"];
  SetCounts(root, report);
  for (auto first = cases.begin(); first != cases.end();) {
    const auto end = std::find_if(first, cases.end(), [&](const Json& test) {
      return test["scenario"] != (*first)["scenario"];
    });
    const Json own = MakeReport({first, end});
    pugi::xml_node suite = root.append_child("testsuite");
    Set(suite, "name", (*first)["scenario"]);
    SetCounts(suite, own);
    for (const Json& test : own["cases"]) AddCase(suite, test);
    first = end;
  }
  std::ostringstream text;
  document.save(text, "  ");
  return text.str();
}

}  // namespace palsim
