#include "tools/palsim/export_call.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <tuple>
#include <type_traits>
#include <utility>

#include "platform/sim/exports.h"
#include "platform/sim/text.h"
#include "tools/palsim/names.h"

namespace palsim {
namespace {

// A number as it is typed: decimal, negative, or hexadecimal behind 0x.
template <class Number>
Number ParseNumber(const std::string& text) {
  static_assert(std::is_integral_v<Number> && sizeof(Number) <= 4,
                "teach palsim this argument type");
  const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  const char* begin = text.data() + (hexadecimal ? 2 : 0);
  const char* end = text.data() + text.size();
  std::int64_t value = 0;
  const auto [stop, error] = std::from_chars(begin, end, value, hexadecimal ? 16 : 10);
  const bool fits = value >= INT32_MIN && value <= std::int64_t{UINT32_MAX};
  if (error != std::errc() || stop != end || !fits) {
    throw UsageError(fmt::format("'{}' is no 32-bit number (use 5, -1 or 0x1F)", text));
  }
  return static_cast<Number>(value);
}

template <class Result, class... Arguments>
CallOutcome Invoke(const sim::Export<Result(Arguments...)>& function, std::string_view name,
                   const std::vector<std::string>& texts) {
  if (texts.size() != sizeof...(Arguments)) {
    throw UsageError(
        fmt::format("{} takes {} argument(s), {} given", name, sizeof...(Arguments), texts.size()));
  }
  const HRESULT result = [&]<std::size_t... Index>(std::index_sequence<Index...>) {
    return function(ParseNumber<Arguments>(texts[Index])...);
  }
  (std::index_sequence_for<Arguments...>());
  return {result < 0, ResultText(result)};
}

struct ExportRow {
  std::string_view name;
  CallOutcome (*call)(const sim::Exports&, const std::vector<std::string>&);
};

constexpr std::array kExports{
#define PAL_EXPORT(name)                                                                        \
  ExportRow{#name, [](const sim::Exports& exports, const std::vector<std::string>& arguments) { \
              return Invoke(exports.name, #name, arguments);                                    \
            }},
#include "exports.inc"
#undef PAL_EXPORT
};

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

}  // namespace

std::vector<std::string_view> ExportNames() {
  std::vector<std::string_view> names;
  for (const ExportRow& row : kExports) names.push_back(row.name);
  return names;
}

CallOutcome CallExport(sim::Process& process, std::string_view name,
                       const std::vector<std::string>& arguments) {
  const auto* const row = std::ranges::find(kExports, name, &ExportRow::name);
  if (row == kExports.end()) {
    throw UsageError(fmt::format("there is no export {}{}", name, Suggestion(name)));
  }
  return row->call(process.exports(), arguments);
}

}  // namespace palsim
