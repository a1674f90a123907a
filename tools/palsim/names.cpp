#include "tools/palsim/names.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>

#include "tools/palsim/argument.h"
#include "tools/palsim/declarations.h"

namespace palsim {
namespace {

struct NumberName {
  std::uint32_t number;
  std::string_view name;
};

constexpr std::array kFacilities{
    NumberName{1003, "beeper"},
    NumberName{1004, "LED"},
    NumberName{1005, "keypad"},
    NumberName{1006, "display"},
    NumberName{1007, "power"},
    NumberName{1008, "configuration"},
    NumberName{1009, "scanner"},
    NumberName{1015, "vibrator"},
    NumberName{1018, "boot"},
    NumberName{1039, "device information"},
    NumberName{1068, "provider library"},
    NumberName{1071, "version"},
    NumberName{1074, "manufacturing options"},
    NumberName{1094, "image capture and security"},
    NumberName{1102, "configuration access"},
    NumberName{1103, "USB"},
    NumberName{1114, "SD/MMC and image capture"},
    NumberName{1115, "ActiveSync"},
    NumberName{1116, "vehicle dock"},
    NumberName{1118, "registry files"},
    NumberName{1236, "LP"},
};

constexpr std::array<std::string_view, 4> kSeverities{"plain", "info", "warning", "error"};

constexpr std::uint32_t kFacilityMask = 0xFFF;

constexpr std::string_view kError = "(error)";  // what the name of many results ends in

// Of "PAL_E_WIN32(2)".
std::optional<std::uint32_t> ParseError(std::string_view text) {
  const std::size_t bracket = text.find('(');
  if (bracket == std::string_view::npos || text.back() != ')') return std::nullopt;
  for (const ResultName& result : ResultNames()) {
    if (!result.name.ends_with(kError) || !result.name.starts_with(text.substr(0, bracket + 1))) {
      continue;
    }
    const std::string_view error = text.substr(bracket + 1, text.size() - bracket - 2);
    return result.code |
           (static_cast<std::uint32_t>(ParseNumber(std::string(error))) & ~result.mask);
  }
  return std::nullopt;
}

}  // namespace

std::string ResultMeaning(HRESULT result) {
  const auto code = static_cast<std::uint32_t>(result);
  const ResultName* best = nullptr;
  for (const ResultName& known : ResultNames()) {
    if ((code & known.mask) != known.code) continue;
    if (best == nullptr || best->mask < known.mask) best = &known;
  }
  if (best == nullptr) return fmt::format("{}", result);
  std::string_view name = best->name;
  if (!name.ends_with(kError)) return std::string(name);
  name.remove_suffix(kError.size());
  return fmt::format("{}({})", name, code & ~best->mask);
}

std::string ResultText(HRESULT result) {
  return fmt::format("0x{:08X} {}", static_cast<std::uint32_t>(result), ResultMeaning(result));
}

std::uint32_t ParseResult(const std::string& text) {
  const auto results = ResultNames();
  const auto row = std::ranges::find(results, text, &ResultName::name);
  if (row != results.end()) return row->code;
  try {
    const auto error = ParseError(text);
    return error ? *error : static_cast<std::uint32_t>(ParseNumber(text));
  } catch (const UsageError&) {
    throw UsageError(fmt::format(
        "'{}' is no result (use S_OK, E_FAIL, PAL_KEY_E_NOT_SUPPORTED, PAL_E_WIN32(2), or a number)",
        text));
  }
}

std::string CategoryText(std::uint32_t category) {
  const std::uint32_t facility = (category >> 16) & kFacilityMask;
  const auto* const family = std::ranges::find(kFacilities, facility, &NumberName::number);
  return fmt::format("{} {}", kSeverities[category >> 30],
                     family == kFacilities.end() ? fmt::format("facility {}", facility)
                                                 : std::string(family->name));
}

std::string Quoted(const std::string& word) {
  constexpr std::string_view kPlain =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_./:=@%+,-";
  if (!word.empty() && word.find_first_not_of(kPlain) == std::string::npos) return word;
  std::string quoted = "'";
  for (const char letter : word) quoted += letter == '\'' ? "'\\''" : std::string(1, letter);
  return quoted + "'";
}

}  // namespace palsim
