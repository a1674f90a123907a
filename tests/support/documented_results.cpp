#include "tests/support/documented_results.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

struct Answer {
  std::string_view export_name;
  std::uint32_t code;
  std::uint32_t mask;
};

constexpr auto kAnswers = std::to_array<Answer>({
#define PAL_CONTRACT_ANSWER(export_name, name, code, mask) {export_name, code, mask},
#include "contract.inc"
});

}  // namespace

bool DocumentedResults::Has(std::uint32_t result) const {
  return std::ranges::any_of(
      rows_, [result](const auto& row) { return (result & row.second) == row.first; });
}

const std::map<std::string, DocumentedResults>& ResultsByExport() {
  static const std::map<std::string, DocumentedResults> results = [] {
    std::map<std::string, DocumentedResults> found;
    for (const Answer& answer : kAnswers) {
      found[std::string(answer.export_name)].Add(answer.code, answer.mask);
    }
    return found;
  }();
  return results;
}
