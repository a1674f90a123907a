// What the simulated device answers to the questions that palcheck.exe puts to a handheld, and what
// docs/platform.md says that it answers.
#include <fmt/ranges.h>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "platform/conformance/queries.h"
#include "platform/conformance/report.h"
#include "platform/sim/device_folder.h"
#include "platform/sim/hardware/hardware.h"
#include "platform/sim/host_file.h"
#include "platform/sim/kernel/registry_text.h"
#include "tests/support/device_test.h"

namespace {

// A row of the tables in docs/platform.md.
struct Fact {
  std::string source;
  std::string simulated;
  std::vector<std::string> holders;  // questions of palcheck.exe, tests, files
};

// The cells of a table's line. "\\|" is a letter of a cell.
std::vector<std::string> CellsOf(const std::string& line) {
  std::vector<std::string> cells;
  std::string cell;
  for (std::size_t at = 1; at < line.size(); ++at) {
    if (line.compare(at, 2, "\\|") == 0) {
      cell += line[++at];
    } else if (line[at] == '|') {
      cells.push_back(std::exchange(cell, {}));
    } else {
      cell += line[at];
    }
  }
  return cells;
}

std::vector<std::string> CodesOf(const std::string& cell) {
  const std::regex code("`([^`]*)`");
  return {std::sregex_token_iterator(cell.begin(), cell.end(), code, 1), {}};
}

bool IsBlank(const std::string& cell) {
  return cell.find_first_not_of(' ') == std::string::npos;
}

std::vector<Fact> FactsOfTheGuide() {
  constexpr std::size_t kColumns = 6;
  std::istringstream guide(sim::ReadHostFile(PROJECT_DIR "/docs/platform.md"));
  std::vector<Fact> facts;
  bool is_in_table = false;
  for (std::string line; std::getline(guide, line);) {
    const bool is_heading = line.starts_with("| fact |");
    is_in_table = is_heading || (is_in_table && line.starts_with('|'));
    if (!is_in_table || is_heading || line.starts_with("|-")) continue;
    std::vector<std::string> cells = CellsOf(line);
    EXPECT_EQ(cells.size(), kColumns) << line;
    EXPECT_TRUE(std::ranges::none_of(cells, &IsBlank)) << line;
    cells.resize(kColumns);
    facts.push_back({cells[1], cells[2], CodesOf(cells[5])});
    EXPECT_FALSE(facts.back().holders.empty()) << line;
  }
  return facts;
}

bool IsQuestion(const std::string& holder) {
  return holder.find(": ") != std::string::npos;
}

// The lines of a report that the guide expects.
std::vector<std::string> AnswersOfTheGuide() {
  std::vector<std::string> lines;
  for (const Fact& fact : FactsOfTheGuide()) {
    const auto answers = CodesOf(fact.simulated);
    const char* const mark = fact.source.starts_with(" chosen") ? conformance::kChosenMark : "";
    for (const std::string& holder : fact.holders) {
      if (!IsQuestion(holder)) continue;
      lines.push_back(fmt::format("{}{}{}{}", holder, conformance::kEquals,
                                  answers.empty() ? "" : answers[0], mark));
    }
  }
  return lines;
}

bool IsTest(const std::string& name) {
  const auto& tests = *testing::UnitTest::GetInstance();
  for (int suite = 0; suite < tests.total_test_suite_count(); ++suite) {
    const auto& cases = *tests.GetTestSuite(suite);
    for (int test = 0; test < cases.total_test_count(); ++test) {
      if (name == fmt::format("{}.{}", cases.name(), cases.GetTestInfo(test)->name())) return true;
    }
  }
  return false;
}

std::string Sorted(std::vector<std::string> lines) {
  std::ranges::sort(lines);
  return fmt::format("{}\n", fmt::join(lines, "\n"));
}

std::string ReportOf(sim::Device& device) {
  sim::Process process(device, "palcheck.exe");
  process.Run([] { EXPECT_TRUE(conformance::WriteReport()); });
  const auto* const bytes = device.files().Read("\\palcheck.txt");
  return bytes == nullptr ? "" : std::string(bytes->begin(), bytes->end());
}

// Some questions ask what a mistake is answered: it is recorded as one.
TEST(Conformance, GuideSaysWhatTheSimulatedDeviceAnswers) {
  sim::Device device;
  sim::LoadDevice(device, PROJECT_DIR "/devices/rm21");
  std::istringstream report(ReportOf(device));
  std::vector<std::string> answers;
  std::size_t queries = 0;
  for (std::string line; std::getline(report, line);) {
    EXPECT_TRUE(line.ends_with('\r')) << line;
    line.pop_back();
    EXPECT_EQ(line.find("not exported"), std::string::npos) << line;
    if (IsQuestion(line)) {
      answers.push_back(line);
    } else {
      ++queries;
    }
  }
  std::vector<std::string> expected = AnswersOfTheGuide();
  expected.insert(expected.end(), {conformance::kHeading, conformance::kEnd});
  EXPECT_EQ(Sorted(answers), Sorted(expected));
  EXPECT_EQ(queries, conformance::Queries().size());
}

TEST(Conformance, GuideNamesTestsAndFilesThatThereAre) {
  for (const Fact& fact : FactsOfTheGuide()) {
    for (const std::string& holder : fact.holders) {
      if (IsQuestion(holder)) continue;
      const bool is_file = holder.find('/') != std::string::npos;
      EXPECT_TRUE(is_file ? std::filesystem::exists(PROJECT_DIR "/" + holder) : IsTest(holder))
          << holder;
    }
  }
}

TEST(Conformance, LeavesEveryDeviceAsItWas) {
  for (const char* sample : {"greywing", "rm21", "rm23", "rx"}) {
    SCOPED_TRACE(sample);
    sim::Device device;
    sim::LoadDevice(device, std::string(PROJECT_DIR "/devices/") + sample);
    device.set_library_path(std::string(sim::kLibraryPath));
    { const sim::Process first(device); }  // the library repairs the buttons at its first attach
    device.journal().Clear();
    const std::string registry = sim::ExportRegistryText(device.registry());
    const auto volume = device.hardware().audio.levels.volume;
    EXPECT_TRUE(ReportOf(device).ends_with("\r\npalcheck: done\r\n"));
    EXPECT_EQ(sim::ExportRegistryText(device.registry()), registry);
    EXPECT_EQ(device.hardware().audio.levels.volume, volume);
    for (const auto effect :
         {sim::Effect::kRegistry, sim::Effect::kFile, sim::Effect::kAudio, sim::Effect::kLed,
          sim::Effect::kVibration, sim::Effect::kDisplay, sim::Effect::kPower}) {
      for (const std::string& text : device.journal().Texts(effect)) {
        const bool own = text.starts_with("HKEY_CURRENT_USER\\DVLORQPALcheck") ||
                         text.starts_with("\\palcheck.txt") || text.starts_with("volume");
        EXPECT_TRUE(own) << text;
      }
    }
  }
}

}  // namespace
