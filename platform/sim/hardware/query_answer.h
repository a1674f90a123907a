// The device's answers to queries.
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
  // The byte count for the caller, if it is not the true one: for a driver that gives wrong
  // answers.
  std::optional<std::uint32_t> returned{};
};

// The answer of a device that does not know the query.
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
