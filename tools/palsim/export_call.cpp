#include "tools/palsim/export_call.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <tuple>
#include <utility>

#include "platform/sim/exports.h"
#include "platform/sim/text.h"
#include "tools/palsim/argument.h"
#include "tools/palsim/names.h"

namespace palsim {
namespace {

CallOutcome OutcomeOf(HRESULT result) {
  return {result < 0, static_cast<std::uint32_t>(result), ResultText(result), {}};
}
// An answer such as yes or no.
CallOutcome OutcomeOf(DWORD answer) {
  return {false, answer, fmt::format("{}", answer), {}};
}

template <class... Arguments>
std::tuple<Argument<Arguments>...> Read(std::string_view name,
                                        const std::vector<std::string>& texts) {
  if (texts.size() != sizeof...(Arguments)) {
    throw UsageError(
        fmt::format("{} takes {} argument(s), {} given", name, sizeof...(Arguments), texts.size()));
  }
  return [&]<std::size_t... Index>(std::index_sequence<Index...>) {
    return std::tuple<Argument<Arguments>...>{Argument<Arguments>(texts[Index])...};
  }
  (std::index_sequence_for<Arguments...>());
}

template <class Result, class... Arguments>
void Check(const sim::Export<Result(Arguments...)>& /*function*/, std::string_view name,
           const std::vector<std::string>& texts) {
  Read<Arguments...>(name, texts);
}

template <class Result, class... Arguments>
CallOutcome Invoke(const sim::Export<Result(Arguments...)>& function, std::string_view name,
                   const std::vector<std::string>& texts) {
  auto arguments = Read<Arguments...>(name, texts);
  return [&]<std::size_t... Index>(std::index_sequence<Index...>) {
    const auto result = function(std::get<Index>(arguments).value()...);
    CallOutcome outcome = OutcomeOf(result);
    const std::array<std::string, sizeof...(Index)> answers{std::get<Index>(arguments).answer()...};
    for (std::size_t index = 0; index < answers.size(); ++index) {
      if (answers[index].empty()) continue;
      outcome.answers.push_back({index + 1, answers[index]});
    }
    return outcome;
  }
  (std::index_sequence_for<Arguments...>());
}

struct ExportRow {
  std::string_view name;
  CallOutcome (*call)(const sim::Exports&, const std::vector<std::string>&);
  void (*check)(const std::vector<std::string>&);
};

constexpr std::array kExports{
#define PAL_EXPORT(name)                                                                 \
  ExportRow{#name,                                                                       \
            [](const sim::Exports& exports, const std::vector<std::string>& arguments) { \
              return Invoke(exports.name, #name, arguments);                             \
            },                                                                           \
            [](const std::vector<std::string>& arguments) {                              \
              Check(sim::Exports{}.name, #name, arguments);                              \
            }},
#include "exports.inc"
#undef PAL_EXPORT
};

// Of a call that never came back, because its device restarted under it.
CallOutcome RestartOutcome(sim::RestartKind kind) {
  CallOutcome outcome;
  outcome.result = fmt::format("no answer: {}", sim::RestartText(kind));
  return outcome;
}

char16_t FoldedUnit(char character) {
  return sim::FoldCase(static_cast<unsigned char>(character));
}

// The export that a mistyped name may have meant: one that holds it, whatever its case.
std::string Suggestion(std::string_view name) {
  for (const ExportRow& row : kExports) {
    const auto* const found =
        std::search(row.name.begin(), row.name.end(), name.begin(), name.end(),
                    [](char left, char right) { return FoldedUnit(left) == FoldedUnit(right); });
    if (!name.empty() && found != row.name.end())
      return fmt::format("; did you mean {}?", row.name);
  }
  return "; 'palsim --exports' lists them";
}

const ExportRow& Find(std::string_view name) {
  const auto* const row = std::ranges::find(kExports, name, &ExportRow::name);
  if (row != kExports.end()) return *row;
  throw UsageError(fmt::format("there is no export {}{}", name, Suggestion(name)));
}

}  // namespace

std::vector<std::string_view> ExportNames() {
  std::vector<std::string_view> names(kExports.size());
  std::ranges::transform(kExports, names.begin(), &ExportRow::name);
  return names;
}

void CheckCall(std::string_view name, const std::vector<std::string>& arguments) {
  Find(name).check(arguments);
}

CallOutcome CallExport(sim::Process& process, std::string_view name,
                       const std::vector<std::string>& arguments) {
  const ExportRow& row = Find(name);
  row.check(arguments);
  const std::string call = fmt::format("{}({})", name, fmt::join(arguments, ", "));
  process.Note(sim::Effect::kCall, sim::Escape(call));
  const std::size_t restarts_before = process.device().restarts().size();
  try {
    CallOutcome outcome = row.call(process.exports(), arguments);
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
    fmt::print("  argument {}: {}\n", answer.argument, answer.text);
  }
}

}  // namespace palsim
