// Texts in what the device answers to a query, and texts as an identity source gives them out.
#ifndef SYSINFO_IDENTITY_ANSWER_TEXT_H_
#define SYSINFO_IDENTITY_ANSWER_TEXT_H_

#include <array>
#include <span>
#include <string_view>

#include "frame/text.h"
#include "platform/wince.h"

namespace pal {

// What asks for a non-volatile parameter: its id, low byte first.
template <size_t kSize = 2>
constexpr std::array<BYTE, kSize> ParameterRequest(WORD id) {
  return {static_cast<BYTE>(id & 0xFF), static_cast<BYTE>(id >> 8)};
}

// The text at the beginning of some bytes: up to their first null, or all of them.
inline std::string_view TextOf(std::span<const BYTE> bytes) {
  const auto* const text = reinterpret_cast<const char*>(bytes.data());
  return {text, Length(std::span(text, bytes.size()))};
}

// Copies a text out. `length`: in, the size of `buffer`; out, that of the text with its end. False
// where it does not fit; nothing is then changed.
[[nodiscard]] inline bool PutText(std::string_view text, char* buffer, DWORD* length) {
  if (!Copy(std::span(buffer, *length), text)) return false;
  *length = static_cast<DWORD>(text.size() + 1);
  return true;
}

}  // namespace pal

#endif  // SYSINFO_IDENTITY_ANSWER_TEXT_H_
