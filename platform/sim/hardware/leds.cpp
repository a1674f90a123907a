#include "platform/sim/hardware/leds.h"

#include <algorithm>
#include <array>

namespace sim {
namespace {

constexpr std::array<std::string_view, 3> kStateNames{"off", "on", "blink"};

constexpr std::int32_t kNoPreset = -900;
constexpr int kPresets = 9;

}  // namespace

std::string_view LedStateName(LedState state) {
  return kStateNames.at(static_cast<std::size_t>(state));
}

std::optional<LedState> LedStateFromName(std::string_view name) {
  const auto* const found = std::ranges::find(kStateNames, name);
  if (found == kStateNames.end()) return std::nullopt;
  return static_cast<LedState>(found - kStateNames.begin());
}

std::optional<int> Leds::PresetOf(std::int32_t number) {
  if (number <= kNoPreset || number > kNoPreset + kPresets) return std::nullopt;
  return number - kNoPreset;
}

std::optional<LedState> Leds::State(std::uint32_t number) const {
  const auto led = leds_.find(number);
  if (led == leds_.end()) return std::nullopt;
  return led->second.state;
}

bool Leds::Set(std::uint32_t number, LedState state) {
  const auto led = leds_.find(number);
  if (led == leds_.end() || led->second.state == state) return false;
  led->second.state = state;
  return true;
}

}  // namespace sim
