// Texts in the device's answers, and texts as an identity source gives them out.
#ifndef SYSINFO_IDENTITY_ANSWER_TEXT_H_
#define SYSINFO_IDENTITY_ANSWER_TEXT_H_

#include <array>
#include <span>
#include <string_view>

#include "frame/text.h"
#include "platform/wince.h"

namespace pal {

// The request for a non-volatile parameter: its id, low byte first.
template <size_t kSize = 2>
constexpr std::array<BYTE, kSize> ParameterRequest(WORD id) {
  return {static_cast<BYTE>(id & 0xFF), static_cast<BYTE>(id >> 8)};
}

// The text at the beginning of some bytes: up to their first null, or all of them.
inline std::string_view TextOf(std::span<const BYTE> bytes) {
  const auto* const text = reinterpret_cast<const char*>(bytes.data());
  return {text, Length(std::span(text, bytes.size()))};
}

// Copies a text. `length`: in, the size of `buffer`; out, the length of the text with its
// terminator. False where the text does not fit; nothing is then changed.
[[nodiscard]] inline bool PutText(std::string_view text, char* buffer, DWORD* length) {
  if (!Copy(std::span(buffer, *length), text)) return false;
  *length = static_cast<DWORD>(text.size() + 1);
  return true;
}

inline constexpr std::string_view kUpperCaseDigits = "0123456789ABCDEF";
inline constexpr std::string_view kLowerCaseDigits = "0123456789abcdef";

enum class LeadingZero : DWORD { kWritten, kLeftOut };

// Writes a byte as one or two hexadecimal digits, and returns the place behind them.
constexpr char* PutHexadecimal(char* to, BYTE byte, std::string_view digits,
                               LeadingZero leading_zero = LeadingZero::kWritten) {
  if (byte > 0xF || leading_zero == LeadingZero::kWritten) *to++ = digits[byte >> 4];
  *to++ = digits[byte & 0xF];
  return to;
}

}  // namespace pal

#endif  // SYSINFO_IDENTITY_ANSWER_TEXT_H_
