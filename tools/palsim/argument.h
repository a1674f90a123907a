// An export's argument by its declared type: from what was typed, and back to what a person reads.
//
//   a number          5, -1, 0x1F, or a name of the headers: PAL_USB_RNDIS, TRUE
//   a text            as it is; null for no text
//   an out-number     out, or the number that it holds before the call; null for none
//   a port's power    ENABLE:PORT, such as 1:2; null for none
//   an out-buffer     out, or the number of characters or bytes that it has room for; null for none
#ifndef TOOLS_PALSIM_ARGUMENT_H_
#define TOOLS_PALSIM_ARGUMENT_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

#include "include/palcomxpwr.h"
#include "include/paltypes.h"
#include "tools/palsim/usage_error.h"

namespace palsim {

// What an out-parameter holds, for a program.
using Content = std::variant<std::int64_t, std::string, std::vector<BYTE>>;

// A 32-bit number, decimal, negative, hexadecimal behind 0x, or an enumerator's name. Throws
// UsageError.
[[nodiscard]] std::int64_t ParseNumber(const std::string& text);
// A buffer's size, at most 65536. Throws UsageError.
[[nodiscard]] std::size_t ParseSize(const std::string& text);
[[nodiscard]] bool IsNull(const std::string& text);
[[nodiscard]] std::string NumberText(std::uint32_t number);
// Up to the terminator, as UTF-8.
[[nodiscard]] std::string PlainText(const std::vector<char>& text);
[[nodiscard]] std::string PlainText(const std::vector<WCHAR>& text);
[[nodiscard]] std::string QuotedText(const std::vector<char>& text);
[[nodiscard]] std::string QuotedText(const std::vector<WCHAR>& text);
[[nodiscard]] std::string HexText(const std::vector<BYTE>& bytes);

template <class Type>
class Argument {
 public:
  static_assert(std::is_integral_v<Type> && sizeof(Type) <= sizeof(DWORD),
                "palsim does not know arguments of this type");
  static constexpr std::string_view kHow = "a number";
  explicit Argument(const std::string& text) : value_(static_cast<Type>(ParseNumber(text))) {}
  Type value() { return value_; }
  [[nodiscard]] std::string answer() const { return {}; }

 private:
  Type value_;
};

template <>
class Argument<const char*> {
 public:
  static constexpr std::string_view kHow = "a text, or null";
  explicit Argument(const std::string& text) : is_null_(IsNull(text)), text_(text) {}
  const char* value() { return is_null_ ? nullptr : text_.c_str(); }
  [[nodiscard]] std::string answer() const { return {}; }

 private:
  bool is_null_;
  std::string text_;
};

template <>
class Argument<const WCHAR*> {
 public:
  static constexpr std::string_view kHow = "a text, or null";
  explicit Argument(const std::string& text);
  const WCHAR* value() { return is_null_ ? nullptr : text_.c_str(); }
  [[nodiscard]] std::string answer() const { return {}; }

 private:
  bool is_null_;
  std::u16string text_;
};

template <class Number>
class OutNumber {
 public:
  static constexpr std::string_view kHow = "out, or the number that it holds before; or null";
  explicit OutNumber(const std::string& text)
      : is_null_(IsNull(text)),
        value_(is_null_ || text == "out" ? Number{0} : static_cast<Number>(ParseNumber(text))) {}
  Number* value() { return is_null_ ? nullptr : &value_; }
  [[nodiscard]] std::string answer() const {
    return is_null_ ? std::string() : NumberText(number());
  }
  [[nodiscard]] std::uint32_t number() const { return static_cast<std::uint32_t>(value_); }
  [[nodiscard]] Content content() const { return std::int64_t{value_}; }

 private:
  bool is_null_;
  Number value_;
};
template <>
class Argument<DWORD*> : public OutNumber<DWORD> {
  using OutNumber::OutNumber;
};
template <>
class Argument<LONG*> : public OutNumber<LONG> {
  using OutNumber::OutNumber;
};

// Behind its room are spare units, so that an export that takes more room for granted shows it and
// does no harm.
template <class Unit>
class OutBuffer {
 public:
  static constexpr std::string_view kHow = "out, or the room that it has; or null";
  explicit OutBuffer(const std::string& text)
      : is_null_(IsNull(text)),
        room_(is_null_ ? 0 : (text == "out" ? kEnough : ParseSize(text))),
        units_(room_ + kEnough, kSpare) {
    std::fill_n(units_.begin(), room_, Unit{0});
  }
  Unit* value() { return is_null_ ? nullptr : units_.data(); }
  // Whether nothing was written behind the room.
  [[nodiscard]] bool fits() const {
    return std::all_of(RoomEnd(), units_.end(), [](Unit unit) { return unit == kSpare; });
  }
  [[nodiscard]] std::string answer() const {
    if (is_null_) return {};
    std::string text;
    if constexpr (std::is_same_v<Unit, BYTE>) {
      text = HexText(Written());
    } else {
      text = QuotedText(Written());
    }
    return fits() ? text : text + " written past the room given";
  }
  // As it is shown where it does not fit.
  [[nodiscard]] Content content() const {
    if (is_null_ || !fits()) return answer();
    if constexpr (std::is_same_v<Unit, BYTE>) {
      return Written();
    } else {
      return PlainText(Written());
    }
  }

 private:
  static constexpr std::size_t kEnough = 512;
  static constexpr Unit kSpare = 0x5A;
  [[nodiscard]] auto RoomEnd() const { return units_.begin() + static_cast<std::ptrdiff_t>(room_); }
  [[nodiscard]] std::vector<Unit> Written() const {
    return {units_.begin(), fits() ? RoomEnd() : units_.end()};
  }
  bool is_null_;
  std::size_t room_;
  std::vector<Unit> units_;
};
template <>
class Argument<char*> : public OutBuffer<char> {
  using OutBuffer::OutBuffer;
};
template <>
class Argument<WCHAR*> : public OutBuffer<WCHAR> {
  using OutBuffer::OutBuffer;
};
template <>
class Argument<BYTE*> : public OutBuffer<BYTE> {
  using OutBuffer::OutBuffer;
};

template <>
class Argument<const PALComPortPower*> {
 public:
  static constexpr std::string_view kHow = "ENABLE:PORT, or null";
  explicit Argument(const std::string& text);
  PALComPortPower* value() { return is_null_ ? nullptr : &power_; }
  [[nodiscard]] std::string answer() const { return {}; }

 private:
  bool is_null_;
  PALComPortPower power_{};
};
template <>
class Argument<PALComPortPower*> : public Argument<const PALComPortPower*> {
 public:
  using Argument<const PALComPortPower*>::Argument;
  [[nodiscard]] std::string answer();
};

}  // namespace palsim

#endif  // TOOLS_PALSIM_ARGUMENT_H_
