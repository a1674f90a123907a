// The notification LEDs and the vibrator, behind one driver.
#ifndef PLATFORM_SIM_HARDWARE_LEDS_H_
#define PLATFORM_SIM_HARDWARE_LEDS_H_

#include <cstdint>
#include <map>
#include <optional>
#include <string_view>

namespace sim {

// The numbers are those of the driver's requests.
enum class LedState : std::uint8_t { kOff = 0, kOn = 1, kBlink = 2 };

// The word that stands for a state in device.toml, and back.
[[nodiscard]] std::string_view LedStateName(LedState state);
[[nodiscard]] std::optional<LedState> LedStateFromName(std::string_view name);

struct Led {
  LedState state = LedState::kOff;
  LedState at_start = LedState::kOff;  // as device.toml has it
};

struct Vibrator {
  std::uint32_t number = 1;  // of the supports record that shows it
  std::uint32_t length_ms = 200;
};

// A driver refuses what changes nothing, and LEDs that it does not have.
class Leds {
 public:
  // The preset that a number stands for: -899 .. -891 are 1 to 9.
  [[nodiscard]] static std::optional<int> PresetOf(std::int32_t number);

  void Clear() { leds_.clear(); }
  void Add(std::uint32_t number, LedState state) { leds_[number] = {state, state}; }
  [[nodiscard]] const std::map<std::uint32_t, Led>& all() const { return leds_; }
  // Nothing where there is no such LED.
  [[nodiscard]] std::optional<LedState> State(std::uint32_t number) const;
  // Whether that changed an LED.
  bool Set(std::uint32_t number, LedState state);

  std::optional<Vibrator> vibrator{};

 private:
  // The notification LED, the good-read LED and the system light, where nothing else is said.
  std::map<std::uint32_t, Led> leds_{{0, {}}, {3, {}}, {6, {}}};
};

}  // namespace sim

#endif  // PLATFORM_SIM_HARDWARE_LEDS_H_
