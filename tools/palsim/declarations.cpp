#include "tools/palsim/declarations.h"

#include <algorithm>
#include <unordered_map>

namespace palsim {
namespace {

constexpr std::array kDeclarations{
#define PAL_CONTRACT_EXPORT(name, header, family, result, function, ...) \
  Declaration{name, header, family, result, function, {{__VA_ARGS__}}},
#include "contract.inc"
};

constexpr std::array kResults{
#define PAL_CONTRACT_RESULT(name, code, mask) ResultName{name, code, mask},
#include "contract.inc"
};

struct ResultRow {
  std::string_view export_name;
  ResultName result;
};

constexpr auto kAnswers = std::to_array<ResultRow>({
#define PAL_CONTRACT_ANSWER(export_name, name, code, mask) {export_name, {name, code, mask}},
#include "contract.inc"
});

struct Enumerator {
  std::string_view enumeration;
  std::string_view name;
  std::uint32_t number;
};

constexpr std::array kEnumerators{
    Enumerator{"BOOL", "FALSE", 0},
    Enumerator{"BOOL", "TRUE", 1},
#define PAL_CONTRACT_ENUMERATOR(enumeration, name, number) Enumerator{enumeration, name, number},
#include "contract.inc"
};

}  // namespace

const Declaration* FindDeclaration(std::string_view export_name) {
  static const auto rows = [] {
    std::unordered_map<std::string_view, const Declaration*> by_name;
    for (const Declaration& row : kDeclarations) by_name.emplace(row.name, &row);
    return by_name;
  }();
  const auto row = rows.find(export_name);
  return row == rows.end() ? nullptr : row->second;
}

std::span<const ResultName> ResultNames() {
  return kResults;
}

std::vector<ResultName> AnswersOf(std::string_view export_name) {
  std::vector<ResultName> results;
  for (const ResultRow& answer : kAnswers) {
    if (answer.export_name == export_name) results.push_back(answer.result);
  }
  return results;
}

std::optional<std::uint32_t> EnumeratorNumber(std::string_view name) {
  const auto* const row = std::ranges::find(kEnumerators, name, &Enumerator::name);
  if (row == kEnumerators.end()) return std::nullopt;
  return row->number;
}

std::string_view EnumeratorName(std::string_view enumeration, std::uint32_t number) {
  const auto* const row = std::ranges::find_if(kEnumerators, [&](const Enumerator& enumerator) {
    return enumerator.enumeration == enumeration && enumerator.number == number;
  });
  return row == kEnumerators.end() ? std::string_view() : row->name;
}

std::vector<std::string_view> EnumeratorsOf(std::string_view enumeration) {
  std::vector<std::string_view> names;
  for (const Enumerator& enumerator : kEnumerators) {
    if (enumerator.enumeration == enumeration) names.push_back(enumerator.name);
  }
  return names;
}

}  // namespace palsim
