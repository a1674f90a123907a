#include "platform/sim/hardware/query_answer.h"

namespace sim {

QueryAnswer TextAnswer(std::string_view text, Terminator terminator) {
  QueryAnswer answer{{text.begin(), text.end()}, 0, {}};
  if (terminator == Terminator::kPresent) answer.bytes.push_back(0);
  return answer;
}

QueryAnswer WideTextAnswer(std::u16string_view text, Terminator terminator) {
  QueryAnswer answer;
  for (const char16_t unit : text) {
    answer.bytes.push_back(static_cast<std::uint8_t>(unit & 0xFF));
    answer.bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
  }
  if (terminator == Terminator::kPresent) answer.bytes.insert(answer.bytes.end(), {0, 0});
  return answer;
}

}  // namespace sim
