// The few operations on text that the library needs. Each knows its bound; a text that does not fit
// is refused whole and never cut.
#ifndef FRAME_TEXT_H_
#define FRAME_TEXT_H_

#include <algorithm>
#include <cstddef>
#include <span>
#include <string_view>

#include "platform/wince.h"

namespace pal {

using WideText = std::basic_string_view<WCHAR>;

// Units before the first null of `text`; `text.size()` where it holds none.
template <typename Unit>
constexpr size_t Length(std::span<const Unit> text) {
  size_t length = 0;
  while (length < text.size() && text[length] != Unit{}) ++length;
  return length;
}

// The index of the first `character`; `text.size()` where there is none. (string_view::find would
// need memchr, which the platform does not have by name.)
constexpr size_t Find(std::string_view text, char character) {
  size_t at = 0;
  while (at < text.size() && text[at] != character) ++at;
  return at;
}

namespace text_detail {

template <typename Unit>
[[nodiscard]] constexpr bool Copy(std::span<Unit> to, std::basic_string_view<Unit> from) {
  if (from.size() >= to.size()) return false;
  std::copy(from.begin(), from.end(), to.begin());
  to[from.size()] = Unit{};
  return true;
}

// Writes `from` and a terminator, unit by unit through `convert`.
template <typename To, typename From, typename Convert>
[[nodiscard]] constexpr bool Put(std::span<To> to, std::basic_string_view<From> from,
                                 Convert convert) {
  if (from.size() >= to.size()) return false;
  std::transform(from.begin(), from.end(), to.begin(), convert);
  to[from.size()] = To{};
  return true;
}

}  // namespace text_detail

// Writes `from` and a terminator. False where they do not fit; `to` is then unchanged.
[[nodiscard]] constexpr bool Copy(std::span<char> to, std::string_view from) {
  return text_detail::Copy(to, from);
}
[[nodiscard]] constexpr bool Copy(std::span<WCHAR> to, WideText from) {
  return text_detail::Copy(to, from);
}

// As Copy, behind the text that `to` already holds.
[[nodiscard]] constexpr bool Append(std::span<char> to, std::string_view from) {
  return text_detail::Copy(to.subspan(Length<char>(to)), from);
}
[[nodiscard]] constexpr bool Append(std::span<WCHAR> to, WideText from) {
  return text_detail::Copy(to.subspan(Length<WCHAR>(to)), from);
}

// 8-bit text (Latin-1) to UTF-16. False where it does not fit; `to` is then unchanged.
[[nodiscard]] constexpr bool Widen(std::span<WCHAR> to, std::string_view from) {
  return text_detail::Put(to, from, [](char character) {
    return static_cast<WCHAR>(static_cast<unsigned char>(character));
  });
}

// UTF-16 to 8-bit text: Latin-1, with '?' for what that does not have. False where it does not fit;
// `to` is then unchanged.
[[nodiscard]] constexpr bool Narrow(std::span<char> to, WideText from) {
  return text_detail::Put(to, from,
                          [](WCHAR unit) { return unit > 0xFF ? '?' : static_cast<char>(unit); });
}

}  // namespace pal

#endif  // FRAME_TEXT_H_
