// Compares what a platform answered to palcheck.exe with what a simulated device answers.
#include <fmt/format.h>

#include <algorithm>
#include <string_view>

#include "platform/conformance/report.h"
#include "platform/sim/device_folder.h"
#include "tools/palsim/commands.h"
#include "tools/palsim/device_lock.h"
#include "tools/palsim/samples.h"
#include "tools/palsim/usage_error.h"
#include "tools/streams.h"

namespace palsim {
namespace {

struct Answered {
  std::string question;
  std::string answer;
  bool chosen = false;  // no document settles it
};

struct Report {
  std::vector<Answered> answers;
  bool complete = false;
  std::string last = "none";  // of a report that is not: the question that was put last
};

// A question about the platform has a colon; the others are exports of the library.
bool IsFact(const Answered& line) {
  return line.question.find(": ") != std::string::npos;
}

// Cuts the text before a mark off the front; all of it where there is no mark.
std::string_view CutBefore(std::string_view& text, std::string_view mark) {
  const std::string_view front = text.substr(0, text.find(mark));
  text.remove_prefix(std::min(text.size(), front.size() + mark.size()));
  return front;
}

// `line` has no line end.
void AddReportLine(Report& report, std::string_view line, const std::string& where) {
  if (line.empty()) return;
  if (report.complete) throw UsageError(where + " stands behind the end of the report");
  if (line == conformance::kEnd) {
    report.complete = true;
    return;
  }
  const bool chosen = line.ends_with(conformance::kChosenMark);
  if (chosen) line.remove_suffix(std::size(conformance::kChosenMark) - 1);
  if (line.find(conformance::kEquals) == std::string_view::npos) {
    throw UsageError(fmt::format("{} is no answer: {}", where, sim::Escape(line.substr(0, 60))));
  }
  const std::string_view question = CutBefore(line, conformance::kEquals);
  report.answers.push_back({std::string(question), std::string(line), chosen});
}

Report ParseReport(const std::string& name, std::string_view text) {
  constexpr std::string_view kStart = "palcheck: ";
  if (!text.starts_with(kStart)) {
    throw UsageError(
        fmt::format("{} is not from palcheck.exe: it does not begin with '{}'", name, kStart));
  }
  Report report;
  CutBefore(text, "\n");
  for (std::size_t number = 2; text.find('\n') != std::string_view::npos; ++number) {
    std::string_view line = CutBefore(text, "\n");
    if (line.ends_with('\r')) line.remove_suffix(1);
    AddReportLine(report, line, fmt::format("{}:{}", name, number));
  }
  if (text == conformance::kEnd) report.complete = true;  // an editor took the line end
  if (!report.answers.empty()) report.last = report.answers.back().question;
  if (!text.empty()) report.last = CutBefore(text, conformance::kEquals);
  return report;
}

constexpr std::size_t kMostBytes = std::size_t{1} << 20;  // a report has some ten thousand

Report ReadReport(const std::string& file) try {
  const std::string text = tools::ReadInput(file);
  const std::string name = tools::InputName(file);
  if (text.size() > kMostBytes) throw UsageError(name + " is larger than any report");
  return ParseReport(name, text);
} catch (const sim::DeviceFolderError& error) {
  throw UsageError(error.what());
}

Report AskSimulatedDevice(const std::filesystem::path& folder) {
  sim::Device device;
  LoadLocked(device, folder);
  device.set_library_path(std::string(sim::kLibraryPath));  // palcheck.exe knows it by this name
  sim::Process process(device, "palcheck.exe");
  process.Run([] { static_cast<void>(conformance::WriteReport()); });
  const auto* const bytes = device.files().Read("\\palcheck.txt");
  if (bytes == nullptr) throw sim::DeviceFolderError(folder.string() + " takes no \\palcheck.txt");
  return ParseReport("\\palcheck.txt",
                     {reinterpret_cast<const char*>(bytes->data()), bytes->size()});
}

const Answered* AnswerTo(const Report& report, const std::string& question) {
  const auto found = std::ranges::find(report.answers, question, &Answered::question);
  return found == report.answers.end() ? nullptr : &*found;
}

// What was found for the facts, or for the exports.
struct Comparison {
  std::size_t same = 0;
  std::size_t otherwise = 0;
  std::size_t missing = 0;
  std::size_t unknown = 0;
  std::string differences;
  std::string one_sided;  // what one of the two alone has
};

void CompareAnswer(Comparison& result, const Answered& own, const Answered* handheld) {
  if (handheld == nullptr) {
    ++result.missing;
    result.one_sided += fmt::format("not in the file: {}\n", own.question);
  } else if (handheld->answer == own.answer) {
    ++result.same;
  } else {
    ++result.otherwise;
    result.differences += fmt::format("{}{}\n  handheld          {}\n  simulated device  {}\n",
                                      own.question, own.chosen ? conformance::kChosenMark : "",
                                      sim::Escape(handheld->answer), sim::Escape(own.answer));
  }
}

Comparison Compare(const Report& handheld, const Report& simulated, bool facts) {
  Comparison result;
  for (const Answered& own : simulated.answers) {
    if (IsFact(own) == facts) CompareAnswer(result, own, AnswerTo(handheld, own.question));
  }
  for (const Answered& other : handheld.answers) {
    if (IsFact(other) != facts || AnswerTo(simulated, other.question) != nullptr) continue;
    ++result.unknown;
    result.one_sided += fmt::format("unknown to this version: {} = {}\n",
                                    sim::Escape(other.question), sim::Escape(other.answer));
  }
  return result;
}

void PrintCounts(std::string_view what, const Comparison& counts) {
  fmt::print("{:<22}{:>4} the same, {} otherwise, {} not in the file, {} unknown\n", what,
             counts.same, counts.otherwise, counts.missing, counts.unknown);
}

}  // namespace

int CompareFacts(const FactsOptions& options) {
  const Report handheld = ReadReport(options.file);
  const Report simulated = AskSimulatedDevice(FolderOf(options.device));
  const Comparison facts = Compare(handheld, simulated, true);
  const Comparison library = Compare(handheld, simulated, false);
  fmt::print("{}{}", facts.differences, facts.one_sided);
  if (options.library) fmt::print("{}{}", library.differences, library.one_sided);
  PrintCounts("Facts of the platform", facts);
  PrintCounts("Exports of the library", library);
  if (!handheld.complete) {
    fmt::print("The file is cut, palcheck.exe did not end. Its last question: {}\n",
               sim::Escape(handheld.last));
  }
  const bool agrees = handheld.complete && facts.otherwise == 0 && facts.missing == 0;
  return agrees ? kSuccess : kFailure;
}

}  // namespace palsim
