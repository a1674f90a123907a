#include "tools/palsim/scenario/scenario.h"

#include <fmt/format.h>

#include <algorithm>

#include "platform/sim/device_folder.h"
#include "platform/sim/text.h"
#include "tools/palsim/scenario/values.h"
#include "tools/palsim/usage_error.h"
#include "tools/streams.h"

namespace palsim {
namespace {

std::string NotUnderstood(const Words& line) {
  std::size_t most = 0;
  for (const StatementForm& form : StatementForms()) {
    most = std::max(most, WordsInCommon(form.pattern, line));
  }
  std::string message = fmt::format("'{}' is no statement", Joined(line));
  if (most == 0) return message + "; 'palsim --statements' lists them";
  message += "; did you mean:";
  for (const StatementForm& form : StatementForms()) {
    if (WordsInCommon(form.pattern, line) < most) continue;
    message += fmt::format("\n    {}", form.pattern);
  }
  return message;
}

Statement ParseStatement(const Words& line) {
  Statement statement;
  for (const StatementForm& form : StatementForms()) {
    if (!Matches(form.pattern, line, statement.filled)) continue;
    statement.form = &form;
    CheckValues(statement.filled);
    return statement;
  }
  throw UsageError(NotUnderstood(line));
}

// What a statement says about the file itself; false for one that is played.
bool TakeHeading(Scenario& scenario, const Statement& statement, std::string_view line) {
  if (statement.form->play != nullptr) return false;
  // Prose keeps its quotes and blanks.
  constexpr std::string_view kSpaces = " \t\r";
  line.remove_prefix(line.find_first_not_of(kSpaces));
  line.remove_prefix(std::min(line.find_first_of(kSpaces), line.size()));
  line.remove_prefix(std::min(line.find_first_not_of(kSpaces), line.size()));
  const std::string text(line.substr(0, line.find_last_not_of(kSpaces) + 1));
  const std::string_view name = statement.filled.parts().front().first;
  if (name == "TITLE") scenario.title = text;
  if (name == "ABOUT") scenario.about.push_back(text);
  if (name == "SAMPLE") scenario.device = statement.filled.Text(name);
  return true;
}

}  // namespace

Scenario ParseScenario(const std::string& name, std::string_view text) {
  Scenario scenario;
  scenario.name = scenario.title = name;
  std::string faults;
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    try {
      const Words words = SplitWords(line);
      if (words.empty()) continue;
      Statement statement = ParseStatement(words);
      statement.line = number;
      if (TakeHeading(scenario, statement, line)) continue;
      scenario.statements.push_back(std::move(statement));
    } catch (const UsageError& error) {
      faults += fmt::format("{}{}:{}: {}", faults.empty() ? "" : "\n", name, number, error.what());
    }
  }
  if (!faults.empty()) throw UsageError(faults);
  return scenario;
}

Scenario ReadScenario(const std::filesystem::path& file) try {
  const std::string name =
      file == tools::kStandardStream ? tools::InputName(file.string()) : file.filename().string();
  return ParseScenario(name, sim::DecodeTextFile(tools::ReadInput(file.string())));
} catch (const sim::DeviceFolderError& error) {
  throw UsageError(error.what());
}

}  // namespace palsim
