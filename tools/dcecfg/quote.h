// 8-bit texts of the device as the text form writes them.
#ifndef TOOLS_DCECFG_QUOTE_H_
#define TOOLS_DCECFG_QUOTE_H_

#include <string>
#include <string_view>

namespace dcecfg {

[[nodiscard]] constexpr bool IsPrintable(char unit) {
  return unit >= 0x20 && unit <= 0x7E;
}

// What is not printable ASCII as \xNN.
[[nodiscard]] std::string Escape(std::string_view text);
// In quotes, with \\ and \" besides.
[[nodiscard]] std::string Quote(std::string_view text);

}  // namespace dcecfg

#endif  // TOOLS_DCECFG_QUOTE_H_
