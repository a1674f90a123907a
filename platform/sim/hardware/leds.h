// The notification LEDs and the vibrator, behind one driver.
#ifndef PLATFORM_SIM_HARDWARE_LEDS_H_
#define PLATFORM_SIM_HARDWARE_LEDS_H_

#include <cstdint>
#include <map>
#include <optional>
#include <string_view>

namespace sim {

// The numbers are the platform's, as in a request to the driver.
enum class LedState : std::uint8_t { kOff = 0, kOn = 1, kBlink = 2 };

// The word for a state in device.toml, and back.
[[nodiscard]] std::string_view LedStateName(LedState state);
[[nodiscard]] std::optional<LedState> LedStateFromName(std::string_view name);

struct Led {
  LedState state = LedState::kOff;
  LedState at_start = LedState::kOff;  // as device.toml has it
};

struct Vibrator {
  std::uint32_t number = 1;  // the LED number under which a query shows the vibrator
  std::uint32_t length_ms = 200;
};

// The driver refuses a request that changes nothing, and one for an LED that it does not have.
class Leds {
 public:
  // The vibration preset of an LED number: 1 to 9 for -899 to -891.
  [[nodiscard]] static std::optional<int> PresetOf(std::int32_t number);

  void Clear() { leds_.clear(); }
  void Add(std::uint32_t number, LedState state) { leds_[number] = {state, state}; }
  [[nodiscard]] const std::map<std::uint32_t, Led>& all() const { return leds_; }
  // The state of an LED; nothing where there is no such LED.
  [[nodiscard]] std::optional<LedState> State(std::uint32_t number) const;
  // Sets the state of an LED. True if that changed it.
  bool Set(std::uint32_t number, LedState state);

  std::optional<Vibrator> vibrator{};

 private:
  // At first: the notification LED, the good-read LED and the system light.
  std::map<std::uint32_t, Led> leds_{{0, {}}, {3, {}}, {6, {}}};
};

}  // namespace sim

#endif  // PLATFORM_SIM_HARDWARE_LEDS_H_
