// What the device answers to a query.
#ifndef PLATFORM_SIM_HARDWARE_QUERY_ANSWER_H_
#define PLATFORM_SIM_HARDWARE_QUERY_ANSWER_H_

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace sim {

inline constexpr std::uint32_t kErrorNotSupported = 50;

// Bytes, or an error.
struct QueryAnswer {
  std::vector<std::uint8_t> bytes{};
  std::uint32_t error = 0;
  // The count that the caller is told where it is not that of the bytes: for answers that lie.
  std::optional<std::uint32_t> returned{};
};

// What a device without that thing answers.
[[nodiscard]] inline QueryAnswer NoAnswer() {
  return {{}, kErrorNotSupported, {}};
}

enum class Terminator : std::uint8_t { kPresent, kMissing };

[[nodiscard]] QueryAnswer TextAnswer(std::string_view text,
                                     Terminator terminator = Terminator::kPresent);
[[nodiscard]] QueryAnswer WideTextAnswer(std::u16string_view text,
                                         Terminator terminator = Terminator::kPresent);

}  // namespace sim

#endif  // PLATFORM_SIM_HARDWARE_QUERY_ANSWER_H_
