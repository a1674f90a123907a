// What stands in a scenario's statements: times, registry values with their data, results.
#ifndef TOOLS_PALSIM_SCENARIO_VALUES_H_
#define TOOLS_PALSIM_SCENARIO_VALUES_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "platform/sim/kernel/registry.h"
#include "tools/palsim/scenario/pattern.h"

namespace palsim {

// Checks everything that a statement was filled with, by its name in the pattern. Throws
// UsageError.
void CheckValues(const Filled& filled);

// Stands for every platform call.
inline constexpr std::string_view kAnyCall = "any";

// "120 ms", "2 s". Throws UsageError.
[[nodiscard]] std::uint32_t ParseTime(const Words& words);
// A length of time; and a moment, always with its milliseconds.
[[nodiscard]] std::string TimeText(std::uint64_t ms);
[[nodiscard]] std::string MomentText(std::uint64_t ms);

// A registry value by its key's path and its name: HKLM\SOFTWARE\Dravonel\PAL\TethGRI.
struct ValuePath {
  std::string key;
  std::string name;
};
[[nodiscard]] ValuePath ParseValuePath(const std::string& text);

// Data of a registry value: a number, a "text", or bytes as hex 0A 01. Throws UsageError.
[[nodiscard]] sim::RegistryValue ParseData(const Words& words);

}  // namespace palsim

#endif  // TOOLS_PALSIM_SCENARIO_VALUES_H_
