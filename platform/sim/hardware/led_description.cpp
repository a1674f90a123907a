// The LEDs and the vibrator in device.toml: [leds], [vibrator], and the state of the LEDs.
#include <charconv>
#include <optional>

#include "platform/sim/description_part.h"
#include "platform/sim/hardware/hardware.h"

namespace sim {
namespace {

constexpr std::uint32_t kMostNumber = 99;
constexpr std::uint32_t kMostLengthMs = 60000;

std::uint32_t ReadLedNumber(const Part& part, const toml::key& key) {
  const std::string_view text = key.str();
  std::uint32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || number > kMostNumber) {
    part.Fail(key.source(), fmt::format("'{}' is no LED number from 0 to {}", text, kMostNumber));
  }
  return number;
}

LedState ReadLedState(const Part& part, const toml::node& node) {
  constexpr std::string_view kExpected = R"(a state: "off", "on" or "blink")";
  const auto state = LedStateFromName(part.As<toml::value<std::string>>(node, kExpected).get());
  if (!state) part.Fail(node.source(), fmt::format("expected {}", kExpected));
  return *state;
}

// The value of a key that may be missing.
void ReadNumber(const Part& part, const toml::table& table, std::string_view key,
                std::uint32_t most, std::uint32_t& number) {
  const toml::node* node = table.get(key);
  if (node == nullptr) return;
  const std::string expected = fmt::format("a number from 0 to {}: {} = {}", most, key, number);
  const std::int64_t value = part.As<toml::value<std::int64_t>>(*node, expected).get();
  if (value < 0 || value > most) part.Fail(node->source(), fmt::format("expected {}", expected));
  number = static_cast<std::uint32_t>(value);
}

}  // namespace

void ReadLeds(const Part& part, const toml::node& node, Device& device) {
  Leds& leds = device.hardware().leds;
  leds.Clear();
  for (const auto& [key, state] : part.As<toml::table>(node, "a table of LEDs by their numbers")) {
    leds.Add(ReadLedNumber(part, key), ReadLedState(part, state));
  }
}

void ReadVibrator(const Part& part, const toml::node& node, Device& device) {
  const auto& table = part.As<toml::table>(node, "a table: [vibrator]");
  part.Allow(table, {"number", "length_ms"});
  Vibrator vibrator;
  ReadNumber(part, table, "number", kMostNumber, vibrator.number);
  ReadNumber(part, table, "length_ms", kMostLengthMs, vibrator.length_ms);
  Leds& leds = device.hardware().leds;
  if (leds.State(vibrator.number)) {
    part.Fail(node.source(), fmt::format("the number {} is that of an LED", vibrator.number));
  }
  leds.vibrator = vibrator;
}

// The state of an LED that the author has removed since is ignored.
void ReadLedsState(const Part& part, const toml::node& node, Device& device) {
  constexpr std::string_view kExpected = R"(a table: leds = { 3 = "on" })";
  for (const auto& [key, state] : part.As<toml::table>(node, kExpected)) {
    device.hardware().leds.Set(ReadLedNumber(part, key), ReadLedState(part, state));
  }
}

std::string LedsStateText(Device& device) {
  std::vector<std::string> changed;
  for (const auto& [number, led] : device.hardware().leds.all()) {
    if (led.state == led.at_start) continue;
    changed.push_back(fmt::format("{} = \"{}\"", number, LedStateName(led.state)));
  }
  if (changed.empty()) return {};
  return fmt::format("{{ {} }}", fmt::join(changed, ", "));
}

}  // namespace sim
