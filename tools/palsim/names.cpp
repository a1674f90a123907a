#include "tools/palsim/names.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "tools/palsim/argument.h"

namespace palsim {
namespace {

struct NumberName {
  std::uint32_t number;
  std::string_view name;
};

// The platform's results, and those of the families as their headers document them.
constexpr std::array kResults{
    NumberName{0x00000000, "S_OK"},
    NumberName{0x00000001, "S_FALSE"},
    NumberName{0x80004001, "E_NOTIMPL"},
    NumberName{0x80004005, "E_FAIL"},
    NumberName{0x80070057, "E_INVALIDARG"},
    NumberName{0x04320001, "manufacturing options: enabled by policy"},
    NumberName{0x04320002, "manufacturing options: disabled by policy"},
    NumberName{0x83ED0004, "keypad: no such control key"},
    NumberName{0x83ED0005, "keypad: no such action"},
    NumberName{0x83ED0007, "keypad: button not supported"},
    NumberName{0x83EE0001, "display: no such orientation"},
    NumberName{0x83EE0002, "display: orientation refused by the driver"},
    NumberName{0x83EE0008, "display: setting cannot be written"},
    NumberName{0x83EF000D, "power: no event to tell the power manager with"},
    NumberName{0x83EF0011, "power: no such timeout"},
    NumberName{0x840F0001, "device information: no room for the text, or no address"},
    NumberName{0x840F0002, "device information: no length given, or no such detail"},
    NumberName{0x84320004, "manufacturing options: policy's value cannot be read"},
    NumberName{0x84320006, "manufacturing options: policy's location cannot be read"},
    NumberName{0x84320007, "manufacturing options: no such feature"},
    NumberName{0x84320008, "manufacturing options: policy is neither 0 nor 1"},
    NumberName{0x84320009, "manufacturing options: no feature given"},
    NumberName{0x844F0001, "USB: argument out of range"},
    NumberName{0x844F0002, "USB: client refused by the bus"},
    NumberName{0x844F0003, "USB: bus does not tell its client"},
    NumberName{0x844F0004, "USB: bus cannot be opened"},
    NumberName{0x844F0005, "USB: no known client"},
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

constexpr std::uint32_t kWin32Facility = 0x80070000;
constexpr std::uint32_t kPowerFailure = 0x83EF0000;  // with a system error, but for those above
constexpr std::uint32_t kFacilityMask = 0xFFF;

template <std::size_t Rows>
std::string_view Find(const std::array<NumberName, Rows>& rows, std::uint32_t number) {
  const auto* const row = std::ranges::find(rows, number, &NumberName::number);
  return row == rows.end() ? std::string_view() : row->name;
}

std::string Meaning(std::uint32_t code) {
  const std::string_view name = Find(kResults, code);
  if (!name.empty()) return std::string(name);
  if ((code & 0xFFFF0000) == kWin32Facility) return fmt::format("system error {}", code & 0xFFFF);
  if ((code & 0xFFFF0000) == kPowerFailure) {
    return fmt::format("power: system error {}", code & 0xFFFF);
  }
  const std::string_view family = Find(kFacilities, (code >> 16) & kFacilityMask);
  if (code >> 31 != 0 && !family.empty()) return fmt::format("{}: code {}", family, code & 0xFFFF);
  return fmt::format("{}", static_cast<std::int32_t>(code));
}

}  // namespace

std::string ResultText(HRESULT result) {
  const auto code = static_cast<std::uint32_t>(result);
  return fmt::format("0x{:08X} {}", code, Meaning(code));
}

std::uint32_t ParseResult(const std::string& text) {
  constexpr std::string_view kSystemError = "system error ";
  const auto* const row = std::ranges::find(kResults, text, &NumberName::name);
  if (row != kResults.end()) return row->number;
  if (text.starts_with(kSystemError)) {
    return kWin32Facility |
           (static_cast<std::uint32_t>(ParseNumber(text.substr(kSystemError.size()))) & 0xFFFF);
  }
  try {
    return static_cast<std::uint32_t>(ParseNumber(text));
  } catch (const UsageError&) {
    throw UsageError(fmt::format(
        "'{}' is no result (use S_OK, E_FAIL, system error 2, keypad: button not supported, or a number)",
        text));
  }
}

std::string CategoryText(std::uint32_t category) {
  const std::uint32_t facility = (category >> 16) & kFacilityMask;
  const std::string_view family = Find(kFacilities, facility);
  return fmt::format("{} {}", kSeverities[category >> 30],
                     family.empty() ? fmt::format("facility {}", facility) : std::string(family));
}

}  // namespace palsim
