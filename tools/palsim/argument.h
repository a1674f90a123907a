// An export's argument by its declared type: from what was typed, and back to what a person reads.
//
//   a number          5, -1, 0x1F
//   a text            as it is; null for no text
//   an out-number     out, or the number that it holds before the call; null for none
//   a port's power    ENABLE:PORT, such as 1:2; null for none
//   an out-buffer     the number of characters or bytes that it has room for; null for none
#ifndef TOOLS_PALSIM_ARGUMENT_H_
#define TOOLS_PALSIM_ARGUMENT_H_

#include <cstdint>
#include <string>
#include <vector>

#include "include/palcomxpwr.h"
#include "include/paltypes.h"
#include "tools/palsim/usage_error.h"

namespace palsim {

// A 32-bit number, decimal, negative, or hexadecimal behind 0x. Throws UsageError.
[[nodiscard]] std::int64_t ParseNumber(const std::string& text);
// A buffer's size, at most 65536. Throws UsageError.
[[nodiscard]] std::size_t ParseSize(const std::string& text);
[[nodiscard]] bool IsNull(const std::string& text);
[[nodiscard]] std::string NumberText(std::uint32_t number);
[[nodiscard]] std::string QuotedText(const std::vector<char>& text);
[[nodiscard]] std::string QuotedText(const std::vector<WCHAR>& text);
[[nodiscard]] std::string HexText(const std::vector<BYTE>& bytes);

template <class Type>
class Argument {
 public:
  static_assert(std::is_integral_v<Type> && sizeof(Type) <= sizeof(DWORD),
                "palsim does not know arguments of this type");
  explicit Argument(const std::string& text) : value_(static_cast<Type>(ParseNumber(text))) {}
  Type value() { return value_; }
  [[nodiscard]] std::string answer() const { return {}; }

 private:
  Type value_;
};

template <>
class Argument<const char*> {
 public:
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
  explicit OutNumber(const std::string& text)
      : is_null_(IsNull(text)),
        value_(is_null_ || text == "out" ? Number{0} : static_cast<Number>(ParseNumber(text))) {}
  Number* value() { return is_null_ ? nullptr : &value_; }
  [[nodiscard]] std::string answer() const {
    return is_null_ ? std::string() : NumberText(static_cast<std::uint32_t>(value_));
  }

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

template <class Unit>
class OutBuffer {
 public:
  explicit OutBuffer(const std::string& text)
      : is_null_(IsNull(text)), units_(is_null_ ? 0 : ParseSize(text)) {}
  Unit* value() { return is_null_ ? nullptr : units_.data(); }
  [[nodiscard]] std::string answer() const {
    if (is_null_) return {};
    if constexpr (std::is_same_v<Unit, BYTE>) {
      return HexText(units_);
    } else {
      return QuotedText(units_);
    }
  }

 private:
  bool is_null_;
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
