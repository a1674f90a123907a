// One conversion of a format text, such as "%-08.3ls", in 8-bit and in WCHAR texts.
#ifndef PLATFORM_SIM_COREDLL_CONVERSION_H_
#define PLATFORM_SIM_COREDLL_CONVERSION_H_

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace sim {

inline constexpr int kNotGiven = -1;
inline constexpr int kFromArgument = -2;  // "*"

enum class Size : std::uint8_t { kDefault, kShort, kLong, k64Bits };

struct Conversion {
  bool left = false;
  bool plus = false;
  bool blank = false;
  bool alternate = false;
  bool zeros = false;
  int width = kNotGiven;
  int precision = kNotGiven;
  Size size = Size::kDefault;
  char type = '\0';       // '\0': an unknown conversion
  std::size_t units = 0;  // length of the conversion in the format, with its "%"
};

// Reads one conversion; the text begins at its "%".
template <typename Unit>
class ConversionReader {
 public:
  explicit ConversionReader(const Unit* text) : begin_(text), next_(text + 1) {}

  Conversion Read() {
    while (TakeFlag()) {
    }
    conversion_.width = TakeNumber();
    if (Take('.')) conversion_.precision = TakeNumber();
    if (next_[-1] == '.') conversion_.precision = 0;  // no digits behind it
    TakeSize();
    constexpr std::string_view kTypes = "diuoxXcCsSpneEfFgG";
    const bool known = *next_ > 0 && *next_ < 0x80 &&
                       kTypes.find(static_cast<char>(*next_)) != std::string_view::npos;
    if (known) conversion_.type = static_cast<char>(*next_++);
    conversion_.units = static_cast<std::size_t>(next_ - begin_);
    return conversion_;
  }

 private:
  bool Take(char wanted) {
    if (*next_ != static_cast<Unit>(wanted)) return false;
    ++next_;
    return true;
  }

  bool TakeFlag() {
    switch (*next_) {
      case '-':
        return conversion_.left = Take('-');
      case '+':
        return conversion_.plus = Take('+');
      case ' ':
        return conversion_.blank = Take(' ');
      case '#':
        return conversion_.alternate = Take('#');
      case '0':
        return conversion_.zeros = Take('0');
      default:
        return false;
    }
  }

  int TakeNumber() {
    if (Take('*')) return kFromArgument;
    if (*next_ < '0' || *next_ > '9') return kNotGiven;
    std::int64_t number = 0;
    for (; *next_ >= '0' && *next_ <= '9'; ++next_) {
      number = std::min<std::int64_t>(number * 10 + (*next_ - '0'), INT_MAX);
    }
    return static_cast<int>(number);
  }

  void TakeSize() {
    if (*next_ == 'I' && next_[1] == '6' && next_[2] == '4') {
      next_ += 3;
      conversion_.size = Size::k64Bits;
    } else if (Take('l')) {
      conversion_.size = Take('l') ? Size::k64Bits : Size::kLong;
    } else if (Take('w')) {
      conversion_.size = Size::kLong;
    } else if (Take('h')) {
      conversion_.size = Size::kShort;
    }
  }

  const Unit* begin_;
  const Unit* next_;
  Conversion conversion_;
};

}  // namespace sim

#endif  // PLATFORM_SIM_COREDLL_CONVERSION_H_
