// The [display] of device.toml, and the rotation that programs have set.
#include <algorithm>

#include "platform/sim/description_part.h"
#include "platform/sim/hardware/hardware.h"

namespace sim {
namespace {

const Rotation* FindRotation(std::int64_t degrees) {
  const auto* const found = std::ranges::find(kRotations, degrees, &Rotation::degrees);
  return found == kRotations.end() ? nullptr : found;
}

std::uint32_t ReadRotation(const Part& part, const toml::node& node) {
  constexpr std::string_view kExpected = "an angle: 0, 90, 180 or 270";
  const Rotation* rotation =
      FindRotation(part.As<toml::value<std::int64_t>>(node, kExpected).get());
  if (rotation == nullptr) part.Fail(node.source(), fmt::format("expected {}", kExpected));
  return rotation->code;
}

}  // namespace

void ReadDisplay(const Part& part, const toml::node& node, Device& device) {
  const auto& table = part.As<toml::table>(node, "a table: [display]");
  part.Allow(table, {"rotation", "rotations"});
  Display& display = device.hardware().display;
  if (const toml::node* rotation = table.get("rotation")) {
    display.first_orientation = ReadRotation(part, *rotation);
  }
  if (const toml::node* list = table.get("rotations")) {
    display.orientations.clear();
    for (const toml::node& item : part.As<toml::array>(*list, "a list: rotations = [0, 90]")) {
      display.orientations.push_back(ReadRotation(part, item));
    }
  }
}

void ReadRotationState(const Part& part, const toml::node& node, Device& device) {
  constexpr std::string_view kExpected = "an angle: rotation = 0, 90, 180 or 270";
  const Rotation* rotation =
      FindRotation(part.As<toml::value<std::int64_t>>(node, kExpected).get());
  if (rotation == nullptr) part.Fail(node.source(), fmt::format("expected {}", kExpected));
  device.hardware().display.turned_to = rotation->code;
}

std::string RotationStateText(Device& device) {
  const auto code = device.hardware().display.turned_to;
  if (!code) return {};
  return fmt::format("{}", std::ranges::find(kRotations, *code, &Rotation::code)->degrees);
}

}  // namespace sim
