// UTF-16, as the platform speaks it, and UTF-8, as the host and the device folders do.
#ifndef PLATFORM_SIM_TEXT_H_
#define PLATFORM_SIM_TEXT_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace sim {

// Unpaired surrogates and malformed bytes become U+FFFD.
[[nodiscard]] std::string ToUtf8(std::u16string_view text);
[[nodiscard]] std::u16string ToUtf16(std::string_view text);

// The first code point of a text that is not empty. A malformed byte is U+FFFD, one byte long.
struct CodePoint {
  char32_t value = 0;
  std::size_t bytes = 1;
  bool valid = false;
};
[[nodiscard]] CodePoint DecodeUtf8(std::string_view text);
[[nodiscard]] bool IsUtf8(std::string_view text);
// The bytes of a text file as UTF-8: UTF-16 by its byte-order mark, else UTF-8 with or without one.
[[nodiscard]] std::string DecodeTextFile(std::string_view bytes);

// Folds the letters of ASCII and Latin-1.
[[nodiscard]] char16_t FoldCase(char16_t unit);
[[nodiscard]] bool EqualNoCase(std::u16string_view left, std::u16string_view right);
[[nodiscard]] bool EqualNoCase(std::string_view left, std::string_view right);  // UTF-8
// The same number for names that are equal so.
[[nodiscard]] std::size_t HashNoCase(std::u16string_view name);
[[nodiscard]] std::size_t HashNoCase(std::string_view name);

}  // namespace sim

#endif  // PLATFORM_SIM_TEXT_H_
