// What device.toml says of optional parts: [[interfaces]], [bluetooth] and [accelerometer].
#include <array>
#include <memory>

#include "platform/sim/description_part.h"
#include "platform/sim/hardware/accelerometer.h"
#include "platform/sim/hardware/hardware.h"

namespace sim {
namespace {

// The value of a key that may be missing.
void ReadNumber(const Part& part, const toml::table& table, std::string_view key,
                std::uint32_t& number) {
  const toml::node* node = table.get(key);
  if (node == nullptr) return;
  const std::string expected = fmt::format("a number from 0 to 0xFFFFFFFF: {} = {}", key, number);
  const std::int64_t value = part.As<toml::value<std::int64_t>>(*node, expected).get();
  if (value < 0 || value > 0xFFFFFFFF) {
    part.Fail(node->source(), fmt::format("expected {}", expected));
  }
  number = static_cast<std::uint32_t>(value);
}

NetworkInterface ReadInterface(const Part& part, const toml::node& node, std::uint32_t place) {
  constexpr std::size_t kMostBytes = 255;
  constexpr std::string_view kDescription =
      "a description of at most 255 characters: description = \"...\"";
  const auto& table = part.As<toml::table>(node, "tables: [[interfaces]]");
  part.Allow(table, {"description", "type", "index"});
  NetworkInterface read{.index = place};
  const toml::node* description = table.get("description");
  if (description == nullptr) part.Fail(node.source(), fmt::format("expected {}", kDescription));
  read.description = part.As<toml::value<std::string>>(*description, kDescription).get();
  if (read.description.size() > kMostBytes) {
    part.Fail(description->source(), fmt::format("expected {}", kDescription));
  }
  ReadNumber(part, table, "type", read.type);
  ReadNumber(part, table, "index", read.index);
  return read;
}

}  // namespace

void ReadInterfaces(const Part& part, const toml::node& node, Device& device) {
  auto& interfaces = device.hardware().interfaces;
  for (const toml::node& item : part.As<toml::array>(node, "tables: [[interfaces]]")) {
    interfaces.push_back(ReadInterface(part, item, static_cast<std::uint32_t>(interfaces.size())));
  }
}

void ReadBluetooth(const Part& part, const toml::node& node, Device& device) {
  constexpr std::array<std::string_view, 3> kModes{"off", "connectable", "discoverable"};
  constexpr std::string_view kExpected =
      R"(a mode of the radio: mode = "off", "connectable" or "discoverable")";
  const auto& table = part.As<toml::table>(node, "a table: [bluetooth]");
  part.Allow(table, {"mode"});
  const toml::node* mode = table.get("mode");
  if (mode == nullptr) part.Fail(node.source(), fmt::format("expected {}", kExpected));
  const std::string& name = part.As<toml::value<std::string>>(*mode, kExpected).get();
  const auto* const found = std::ranges::find(kModes, name);
  if (found == kModes.end()) part.Fail(mode->source(), fmt::format("expected {}", kExpected));
  device.hardware().bluetooth = static_cast<BluetoothMode>(found - kModes.begin());
}

void ReadAccelerometer(const Part& part, const toml::node& node, Device& device) {
  part.Allow(part.As<toml::table>(node, "a table: [accelerometer]"), {});
  device.hardware().drivers.push_back(std::make_shared<Accelerometer>());
}

}  // namespace sim
