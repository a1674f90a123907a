// The screen and its driver, which can turn it.
#ifndef PLATFORM_SIM_HARDWARE_DISPLAY_H_
#define PLATFORM_SIM_HARDWARE_DISPLAY_H_

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace sim {

struct Rotation {
  std::uint32_t degrees;
  std::uint32_t code;  // the platform's
};
inline constexpr std::array<Rotation, 4> kRotations{{{0, 0}, {90, 1}, {180, 2}, {270, 4}}};

struct Display {
  std::uint32_t first_orientation = 0;     // the orientation code at the start; any number
  std::optional<std::uint32_t> turned_to;  // the orientation code that programs have set
  std::vector<std::uint32_t> orientations{0, 1, 2, 4};  // the codes that the driver accepts

  [[nodiscard]] std::uint32_t orientation() const { return turned_to.value_or(first_orientation); }
};

}  // namespace sim

#endif  // PLATFORM_SIM_HARDWARE_DISPLAY_H_
