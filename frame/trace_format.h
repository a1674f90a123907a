// The compile-time check of a trace line's format against its arguments.
#ifndef FRAME_TRACE_FORMAT_H_
#define FRAME_TRACE_FORMAT_H_

#include <array>
#include <cstddef>
#include <string_view>
#include <type_traits>

#include "platform/wince.h"

namespace pal {

enum class TraceArgumentKind { kUnsupported, kNumber, kPointer, kText, kWideText };

template <typename T>
consteval TraceArgumentKind KindOfTraceArgument() {
  using Pointee = std::remove_cv_t<std::remove_pointer_t<T>>;
  if constexpr (std::is_pointer_v<T>) {
    if (std::is_same_v<Pointee, char>) return TraceArgumentKind::kText;
    if (std::is_same_v<Pointee, WCHAR>) return TraceArgumentKind::kWideText;
    return TraceArgumentKind::kPointer;
  }
  if (std::is_null_pointer_v<T>) return TraceArgumentKind::kPointer;
  const bool is_number = std::is_integral_v<T> || std::is_enum_v<T>;
  const bool fits = sizeof(T) <= sizeof(DWORD);
  return is_number && fits ? TraceArgumentKind::kNumber : TraceArgumentKind::kUnsupported;
}

// What a variadic call carries for an argument: texts as pointers, everything else as 32 bits.
template <typename T>
auto VariadicTraceArgument(T argument) {
  constexpr TraceArgumentKind kKind = KindOfTraceArgument<T>();
  if constexpr (kKind == TraceArgumentKind::kText || kKind == TraceArgumentKind::kWideText) {
    return argument;
  } else if constexpr (kKind == TraceArgumentKind::kPointer) {
    return static_cast<DWORD>(reinterpret_cast<uintptr_t>(argument));
  } else {
    return static_cast<DWORD>(argument);
  }
}

// Neither is a constant expression and neither is defined: a faulty format stops the build here,
// and the compiler's message names the fault.
void TraceFormatIsNotSupported();
void TraceArgumentsDoNotMatchFormat();

constexpr bool AcceptsTraceArgument(std::string_view conversion, TraceArgumentKind kind) {
  if (conversion == "s") return kind == TraceArgumentKind::kText;
  if (conversion == "ls") return kind == TraceArgumentKind::kWideText;
  if (conversion == "x" || conversion == "X") {
    return kind == TraceArgumentKind::kNumber || kind == TraceArgumentKind::kPointer;
  }
  if (conversion != "d" && conversion != "u" && conversion != "c") TraceFormatIsNotSupported();
  return kind == TraceArgumentKind::kNumber;
}

template <size_t kArguments>
consteval void CheckTraceFormat(std::string_view format,
                                const std::array<TraceArgumentKind, kArguments>& kinds) {
  size_t argument = 0;
  for (size_t at = 0; at < format.size(); ++at) {
    if (format[at] != '%') continue;
    ++at;
    if (at < format.size() && format[at] == '%') continue;
    at = format.find_first_not_of("-+ #.0123456789", at);
    if (at == std::string_view::npos) return TraceFormatIsNotSupported();
    const size_t length = format[at] == 'l' ? 2 : 1;
    if (argument == kArguments) return TraceArgumentsDoNotMatchFormat();
    const TraceArgumentKind kind = kinds[argument];
    if (!AcceptsTraceArgument(format.substr(at, length), kind)) TraceArgumentsDoNotMatchFormat();
    ++argument;
    at += length - 1;
  }
  if (argument != kArguments) TraceArgumentsDoNotMatchFormat();
}

// A literal that was checked against `Arguments`. A call that does not match it does not compile.
template <typename... Arguments>
class TraceFormat {
 public:
  template <size_t kSize>
  consteval TraceFormat(const char (&text)[kSize]) : text_(text) {
    constexpr std::array<TraceArgumentKind, sizeof...(Arguments)> kKinds = {
        KindOfTraceArgument<Arguments>()...};
    CheckTraceFormat(std::string_view(text, kSize - 1), kKinds);
  }

  [[nodiscard]] constexpr const char* text() const { return text_; }

 private:
  const char* text_;
};

}  // namespace pal

#endif  // FRAME_TRACE_FORMAT_H_
