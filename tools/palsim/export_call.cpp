#include "tools/palsim/export_call.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <stdexcept>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "platform/sim/exports.h"
#include "platform/sim/text.h"
#include "tools/palsim/argument.h"
#include "tools/palsim/declarations.h"
#include "tools/palsim/names.h"
#include "tools/palsim/nearest.h"

namespace palsim {
namespace {

CallOutcome OutcomeOf(std::string_view /*name*/, HRESULT result) {
  CallOutcome outcome;
  outcome.failed = result < 0;
  outcome.result = ResultText(result);
  outcome.name = ResultMeaning(result);
  return outcome;
}

// An answer such as yes or no.
CallOutcome OutcomeOf(std::string_view name, DWORD answer) {
  CallOutcome outcome;
  outcome.result = fmt::format("{}", answer);
  for (const ResultName& known : AnswersOf(name)) {
    if (known.code != answer) continue;
    if (!outcome.name.empty()) outcome.name += ' ';
    outcome.name += known.name;
  }
  if (!outcome.name.empty()) outcome.result += " " + outcome.name;
  return outcome;
}

const Declaration& DeclarationOf(std::string_view name) {
  const Declaration* declaration = FindDeclaration(name);
  if (declaration != nullptr) return *declaration;
  throw std::logic_error(fmt::format("no header declares {}", name));
}

std::string ArgumentWord(const Parameter& parameter) {
  std::string word(parameter.name);
  std::ranges::transform(word, word.begin(), [](unsigned char letter) {
    return static_cast<char>(std::toupper(letter));
  });
  return word;
}

// "PALKEYGetButtonName BUTTON NAME LENGTH".
std::string UsageLine(const Declaration& declaration) {
  std::string line(declaration.name);
  for (const Parameter& parameter : declaration.parameters) {
    if (!parameter.type.empty()) line += " " + ArgumentWord(parameter);
  }
  return line;
}

enum class Texts : std::uint8_t { kNone, kAll };

template <class ArgumentType>
void TakeNumbers(CallOutcome& outcome, std::size_t place, const ArgumentType& argument) {
  if constexpr (requires { argument.number(); }) outcome.numbers.at(place) = argument.number();
  if constexpr (requires { argument.fits(); }) {
    if (!argument.fits()) outcome.within_room = false;
  }
}

template <class ArgumentType>
Answer AnswerOf(const Parameter& parameter, std::size_t place, ArgumentType& argument) {
  Answer answer{.argument = place,
                .text = argument.answer(),
                .meaning = {},
                .name = parameter.name,
                .content = argument.answer()};
  if constexpr (requires { argument.number(); }) {
    answer.meaning = EnumeratorName(parameter.enumeration, argument.number());
  }
  if constexpr (requires { argument.content(); }) answer.content = argument.content();
  return answer;
}

template <class... Arguments>
std::tuple<Argument<Arguments>...> Read(std::string_view name,
                                        const std::vector<std::string>& texts) {
  if (texts.size() != sizeof...(Arguments)) {
    throw UsageError(fmt::format("{} takes {} argument(s), {} given\n{}", name,
                                 sizeof...(Arguments), texts.size(), UsageText(name)));
  }
  return [&]<std::size_t... Index>(std::index_sequence<Index...>) {
    return std::tuple<Argument<Arguments>...>{Argument<Arguments>(texts[Index])...};
  }
  (std::index_sequence_for<Arguments...>());
}

template <class Result, class... Arguments>
void Check(sim::Export<Result(Arguments...)> sim::Exports::* /*function*/, std::string_view name,
           const std::vector<std::string>& texts) {
  Read<Arguments...>(name, texts);
}

template <class Result, class... Arguments>
CallOutcome Invoke(const sim::Export<Result(Arguments...)>& function, std::string_view name,
                   const std::vector<std::string>& texts, Texts wanted) {
  auto arguments = Read<Arguments...>(name, texts);
  return [&]<std::size_t... Index>(std::index_sequence<Index...>) {
    const auto result = function(std::get<Index>(arguments).value()...);
    CallOutcome outcome;
    if (wanted == Texts::kAll) outcome = OutcomeOf(name, result);
    outcome.code = static_cast<std::uint32_t>(result);
    (TakeNumbers(outcome, Index, std::get<Index>(arguments)), ...);
    if (wanted == Texts::kNone) return outcome;
    const auto& parameters = DeclarationOf(name).parameters;
    const std::array<Answer, sizeof...(Index)> answers{
        AnswerOf(parameters.at(Index), Index + 1, std::get<Index>(arguments))...};
    for (const Answer& answer : answers) {
      if (!answer.text.empty()) outcome.answers.push_back(answer);
    }
    return outcome;
  }
  (std::index_sequence_for<Arguments...>());
}

// How each argument is written, by its type and the name that the headers give it, and what the
// call can answer.
template <class Result, class... Arguments>
std::string Usage(sim::Export<Result(Arguments...)> sim::Exports::* /*function*/,
                  std::string_view name) {
  const Declaration& declaration = DeclarationOf(name);
  std::string text = UsageLine(declaration) + "\n";
  constexpr std::array<std::string_view, sizeof...(Arguments)> kHow{Argument<Arguments>::kHow...};
  for (std::size_t index = 0; index < kHow.size(); ++index) {
    const Parameter& parameter = declaration.parameters.at(index);
    text += fmt::format("  {:<12} {:<12} {}", ArgumentWord(parameter), parameter.type, kHow[index]);
    if (!parameter.unit.empty()) text += fmt::format(" ({})", parameter.unit);
    const bool is_bool = parameter.type == "BOOL";
    const auto names = EnumeratorsOf(is_bool ? "BOOL" : parameter.enumeration);
    if (!names.empty()) text += fmt::format(": {}", fmt::join(names, ", "));
    text += "\n";
  }
  std::vector<std::string_view> answers;
  for (const ResultName& answer : AnswersOf(name)) answers.push_back(answer.name);
  return text + fmt::format("  = {}\n", fmt::join(answers, ", "));
}

struct ExportRow {
  std::string_view name;
  CallOutcome (*call)(const sim::Exports&, const std::vector<std::string>&, Texts);
  void (*check)(const std::vector<std::string>&);
  std::string (*usage)();
};

constexpr std::array kExports{
#define PAL_EXPORT(name)                                                                 \
  ExportRow{#name,                                                                       \
            [](const sim::Exports& exports, const std::vector<std::string>& arguments,   \
               Texts wanted) { return Invoke(exports.name, #name, arguments, wanted); }, \
            [](const std::vector<std::string>& arguments) {                              \
              Check(&sim::Exports::name, #name, arguments);                              \
            },                                                                           \
            [] { return Usage(&sim::Exports::name, #name); }},
#include "exports.inc"
#undef PAL_EXPORT
};

// Of a call that never came back, because its device restarted under it.
CallOutcome RestartOutcome(sim::RestartKind kind) {
  CallOutcome outcome;
  outcome.restart = kind;
  outcome.result = fmt::format("no answer: {}", sim::RestartText(kind));
  return outcome;
}

char16_t FoldedUnit(char character) {
  return sim::FoldCase(static_cast<unsigned char>(character));
}

}  // namespace

std::vector<std::string_view> ExportNames() {
  std::vector<std::string_view> names(kExports.size());
  std::ranges::transform(kExports, names.begin(), &ExportRow::name);
  return names;
}

namespace {

// The export that a mistyped name may have meant: one that holds it, whatever its case.
std::string Suggestion(std::string_view name) {
  for (const ExportRow& row : kExports) {
    const auto* const found =
        std::search(row.name.begin(), row.name.end(), name.begin(), name.end(),
                    [](char left, char right) { return FoldedUnit(left) == FoldedUnit(right); });
    if (!name.empty() && found != row.name.end())
      return fmt::format("; did you mean {}?", row.name);
  }
  const std::string nearest = DidYouMean(name, ExportNames());
  return nearest.empty() ? "; 'palsim --exports' lists them" : nearest;
}

std::unordered_map<std::string_view, const ExportRow*> RowsByName() {
  std::unordered_map<std::string_view, const ExportRow*> rows;
  for (const ExportRow& row : kExports) rows.emplace(row.name, &row);
  return rows;
}

const ExportRow& Find(std::string_view name) {
  static const std::unordered_map<std::string_view, const ExportRow*> rows = RowsByName();
  const auto row = rows.find(name);
  if (row != rows.end()) return *row->second;
  throw UsageError(fmt::format("there is no export {}{}", name, Suggestion(name)));
}

}  // namespace

std::size_t ExportIndex(std::string_view name) {
  return static_cast<std::size_t>(&Find(name) - kExports.data());
}

std::string UsageText(std::string_view name) {
  return Find(name).usage();
}

void CheckCall(std::string_view name, const std::vector<std::string>& arguments) {
  Find(name).check(arguments);
}

std::vector<std::string> ShownArguments(std::string_view name, std::vector<std::string> arguments) {
  const Declaration* declaration = FindDeclaration(name);
  if (declaration == nullptr) return arguments;
  for (std::size_t at = 0; at < std::min(arguments.size(), declaration->parameters.size()); ++at) {
    if (declaration->parameters.at(at).name == "password") arguments[at] = "***";
  }
  return arguments;
}

CallOutcome CallPlainly(sim::Process& process, std::size_t export_index,
                        const std::vector<std::string>& arguments) {
  return kExports.at(export_index).call(process.exports(), arguments, Texts::kNone);
}

CallOutcome CallExport(sim::Process& process, std::string_view name,
                       const std::vector<std::string>& arguments) {
  const ExportRow& row = Find(name);
  row.check(arguments);
  const std::string call =
      fmt::format("{}({})", name, fmt::join(ShownArguments(name, arguments), ", "));
  process.Note(sim::Effect::kCall, sim::Escape(call));
  const std::size_t restarts_before = process.device().restarts().size();
  try {
    CallOutcome outcome = row.call(process.exports(), arguments, Texts::kAll);
    process.Note(sim::Effect::kCall, sim::Escape(fmt::format("{} = {}", call, outcome.result)));
    return outcome;
  } catch (const sim::ProcessKilled&) {
    const std::vector<sim::RestartKind> restarts = process.device().restarts();
    if (restarts.size() == restarts_before) throw;
    return RestartOutcome(restarts.back());
  }
}

void PrintOutcome(std::string_view name, const CallOutcome& outcome) {
  fmt::print("{} = {}\n", name, outcome.result);
  for (const Answer& answer : outcome.answers) {
    fmt::print("  argument {}: {}{}{}\n", answer.argument, answer.text,
               answer.meaning.empty() ? "" : " ", answer.meaning);
  }
}

}  // namespace palsim
