// Formatted text as the platform's C runtime makes it: %s takes 8-bit text and %ls WCHAR text,
// plain and long numbers have 32 bits, I64 ones 64 bits, %p shows 32 bits.
#include "platform/sim/coredll/format.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "platform/sim/coredll/bounded_output.h"
#include "platform/sim/coredll/conversion.h"
#include "platform/sim/text.h"
#include "platform/wince.h"

namespace sim {
namespace {

constexpr std::size_t kDebugLineUnits = 255;

// A formatted number before it is padded to its width.
struct NumberText {
  std::string_view prefix;  // sign or "0x"
  std::size_t zeros = 0;    // between prefix and digits
  std::string_view digits;
};

class Formatter {
 public:
  Formatter(BoundedOutput& output, va_list arguments) : output_(output) {
    va_copy(list_, arguments);
  }
  ~Formatter() { va_end(list_); }
  Formatter(const Formatter&) = delete;
  Formatter& operator=(const Formatter&) = delete;

  void Run(const char* format) {
    while (*format != '\0' && !output_.full()) {
      const char* percent = std::strchr(format, '%');
      const std::size_t plain =
          percent == nullptr ? std::strlen(format) : static_cast<std::size_t>(percent - format);
      output_.Append(format, plain);
      format += plain;
      if (percent != nullptr) format += Convert(format);
    }
  }

 private:
  std::size_t Convert(const char* text) {
    if (text[1] == '%') {
      output_.Append(text, 1);
      return 2;
    }
    Conversion conversion = ConversionReader<char>(text).Read();
    if (conversion.type == '\0') {
      output_.Append(text, conversion.units);
    } else {
      TakeStars(conversion);
      Dispatch(text, conversion);
    }
    return conversion.units;
  }

  void TakeStars(Conversion& conversion) {
    if (conversion.width == kFromArgument) {
      const int width = va_arg(list_, int);
      conversion.left = conversion.left || width < 0;
      conversion.width = width == INT_MIN ? INT_MAX : std::abs(width);
    }
    if (conversion.precision == kFromArgument) {
      conversion.precision = std::max(va_arg(list_, int), kNotGiven);
    }
  }

  void Dispatch(const char* text, const Conversion& conversion) {
    switch (conversion.type) {
      case 'n':
        return NotStored(text, conversion);
      case 's':
      case 'S':
        return Text(conversion);
      case 'c':
      case 'C':
        return Character(conversion);
      case 'd':
      case 'i':
        return Signed(conversion);
      case 'u':
      case 'o':
      case 'x':
      case 'X':
        return Unsigned(conversion);
      case 'p':
        return Pointer(conversion);
      default:
        return Floating(conversion);
    }
  }

  // The platform would write through the pointer, which may be wrong. Here the text shows the
  // conversion instead.
  void NotStored(const char* text, const Conversion& conversion) {
    static_cast<void>(va_arg(list_, void*));
    output_.Append(text, conversion.units);
  }

  // %S and %C are wide unless "h" says otherwise, %s and %c are not unless "l" or "w" does.
  static bool IsWide(const Conversion& conversion) {
    const bool upper = conversion.type == 'S' || conversion.type == 'C';
    return upper ? conversion.size != Size::kShort : conversion.size >= Size::kLong;
  }

  template <typename Write>
  void Padded(const Conversion& conversion, std::size_t length, Write write) {
    const std::size_t width = static_cast<std::size_t>(std::max(conversion.width, 0));
    const std::size_t padding = width > length ? width - length : 0;
    if (!conversion.left) output_.Fill(' ', padding);
    write();
    if (conversion.left) output_.Fill(' ', padding);
  }

  // The length of a text. No more units are read than the precision allows.
  template <typename Unit>
  static std::size_t Length(const Conversion& conversion, const Unit* text) {
    const std::size_t most =
        conversion.precision < 0 ? SIZE_MAX : static_cast<std::size_t>(conversion.precision);
    if constexpr (sizeof(Unit) == 1) return strnlen(text, most);
    std::size_t length = 0;
    while (length < most && text[length] != 0) ++length;
    return length;
  }

  void Text(const Conversion& conversion) {
    const void* argument = va_arg(list_, const void*);
    if (argument != nullptr && IsWide(conversion)) {
      const auto* wide = static_cast<const WCHAR*>(argument);
      const std::size_t length = Length(conversion, wide);
      return Padded(conversion, length, [&] { output_.Narrow(wide, length); });
    }
    const auto* text = argument == nullptr ? "(null)" : static_cast<const char*>(argument);
    const std::size_t length = Length(conversion, text);
    Padded(conversion, length, [&] { output_.Append(text, length); });
  }

  void Character(const Conversion& conversion) {
    const int argument = va_arg(list_, int);
    const WCHAR unit = IsWide(conversion) ? static_cast<WCHAR>(argument)
                                          : static_cast<WCHAR>(static_cast<BYTE>(argument));
    Padded(conversion, 1, [&] { output_.Narrow(&unit, 1); });
  }

  void Signed(const Conversion& conversion) {
    std::int64_t value = 0;
    if (conversion.size == Size::k64Bits) {
      value = va_arg(list_, std::int64_t);
    } else {
      value = va_arg(list_, int);
      if (conversion.size == Size::kShort) value = static_cast<std::int16_t>(value);
    }
    std::string_view sign = conversion.plus ? "+" : conversion.blank ? " " : "";
    if (value < 0) sign = "-";
    const auto magnitude = static_cast<std::uint64_t>(value);
    Digits(conversion, value < 0 ? 0 - magnitude : magnitude, 10, sign);
  }

  void Unsigned(const Conversion& conversion) {
    std::uint64_t value = 0;
    if (conversion.size == Size::k64Bits) {
      value = va_arg(list_, std::uint64_t);
    } else {
      value = va_arg(list_, unsigned);
      if (conversion.size == Size::kShort) value = static_cast<std::uint16_t>(value);
    }
    const unsigned base = conversion.type == 'u' ? 10 : conversion.type == 'o' ? 8 : 16;
    std::string_view prefix;
    if (conversion.alternate && base == 16 && value != 0) {
      prefix = conversion.type == 'X' ? "0X" : "0x";
    }
    Digits(conversion, value, base, prefix);
  }

  void Pointer(Conversion conversion) {
    const auto value = reinterpret_cast<std::uintptr_t>(va_arg(list_, void*));
    conversion.type = 'X';
    conversion.precision = 8;
    Digits(conversion, static_cast<std::uint32_t>(value), 16, conversion.alternate ? "0X" : "");
  }

  void Digits(const Conversion& conversion, std::uint64_t value, unsigned base,
              std::string_view prefix) {
    const char* alphabet = conversion.type == 'X' ? "0123456789ABCDEF" : "0123456789abcdef";
    std::array<char, 24> buffer{};
    std::size_t begin = buffer.size();
    for (; value != 0; value /= base) buffer.at(--begin) = alphabet[value % base];
    const std::size_t length = buffer.size() - begin;
    std::size_t wanted = static_cast<std::size_t>(std::max(conversion.precision, 0));
    if (conversion.precision < 0) wanted = 1;
    if (base == 8 && conversion.alternate) wanted = std::max(wanted, length + 1);
    NumberText text{prefix, wanted > length ? wanted - length : 0, {buffer.data() + begin, length}};
    Number(conversion, text, conversion.precision < 0);
  }

  // "0" pads behind the sign where neither "-" nor a precision is given.
  void Number(const Conversion& conversion, NumberText text, bool may_pad_with_zeros) {
    std::size_t length = text.prefix.size() + text.zeros + text.digits.size();
    const std::size_t width = static_cast<std::size_t>(std::max(conversion.width, 0));
    if (conversion.zeros && !conversion.left && may_pad_with_zeros && width > length) {
      text.zeros += width - length;
      length = width;
    }
    Padded(conversion, length, [&] {
      output_.Append(text.prefix);
      output_.Fill('0', text.zeros);
      output_.Append(text.digits);
    });
  }

  void Floating(const Conversion& conversion) {
    constexpr int kMostDigits = 512;
    const double value = va_arg(list_, double);
    const int digits = conversion.precision < 0 ? 6 : std::min(conversion.precision, kMostDigits);
    const char format[] = {'%', '#', '.', '*', conversion.type, '\0'};
    const char plain_format[] = {'%', '.', '*', conversion.type, '\0'};
    std::array<char, 1024> buffer{};  // a double has at most 309 digits before the point
    const int length =
        std::snprintf(buffer.data(), buffer.size(), conversion.alternate ? format : plain_format,
                      digits, std::fabs(value));
    const std::string_view text(buffer.data(), static_cast<std::size_t>(std::max(length, 0)));
    std::string_view sign = conversion.plus ? "+" : conversion.blank ? " " : "";
    if (std::signbit(value)) sign = "-";
    Number(conversion, {sign, 0, text}, std::isfinite(value));
  }

  BoundedOutput& output_;
  va_list list_;
};

// Shows a conversion in a line of the debug output, which has no arguments.
std::u16string WithoutArgument(const WCHAR* text, const Conversion& conversion) {
  const std::u16string shown(text, conversion.units);
  return conversion.type == '\0' ? shown : u'<' + shown + u"?>";
}

}  // namespace

std::string FormatDebugLine(const char16_t* format) {
  std::u16string line;
  while (format != nullptr && *format != 0 && line.size() < kDebugLineUnits) {
    if (*format != u'%') {
      line += *format++;
    } else if (format[1] == u'%') {
      line += u'%';
      format += 2;
    } else {
      const Conversion conversion = ConversionReader<WCHAR>(format).Read();
      line += WithoutArgument(format, conversion);
      format += conversion.units;
    }
  }
  return ToUtf8(std::u16string_view(line).substr(0, kDebugLineUnits));
}

}  // namespace sim

extern "C" int _vsnprintf(char* buffer, size_t count, const char* format, va_list arguments) {
  if (format == nullptr) return -1;
  sim::BoundedOutput output(buffer, count);
  sim::Formatter(output, arguments).Run(format);
  return output.Finish();
}
