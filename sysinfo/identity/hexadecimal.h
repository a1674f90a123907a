// Bytes as hexadecimal digits.
#ifndef SYSINFO_IDENTITY_HEXADECIMAL_H_
#define SYSINFO_IDENTITY_HEXADECIMAL_H_

#include <span>
#include <string_view>

#include "platform/wince.h"

namespace pal {

inline constexpr std::string_view kUpperCaseDigits = "0123456789ABCDEF";
inline constexpr std::string_view kLowerCaseDigits = "0123456789abcdef";

enum class LeadingZero : DWORD { kWritten, kLeftOut };

// Writes a byte's digits and gives the place behind them; at most two characters.
constexpr char* PutHexadecimal(char* to, BYTE byte, std::string_view digits,
                               LeadingZero leading_zero = LeadingZero::kWritten) {
  if (byte > 0xF || leading_zero == LeadingZero::kWritten) *to++ = digits[byte >> 4];
  *to++ = digits[byte & 0xF];
  return to;
}

}  // namespace pal

#endif  // SYSINFO_IDENTITY_HEXADECIMAL_H_
