// Writes a formatted text into a caller's buffer of a stated size.
#ifndef PLATFORM_SIM_COREDLL_BOUNDED_OUTPUT_H_
#define PLATFORM_SIM_COREDLL_BOUNDED_OUTPUT_H_

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace sim {

// Text that does not fit is dropped, and Finish then reports a failure.
class BoundedOutput {
 public:
  BoundedOutput(char* buffer, std::size_t count)
      : next_(buffer), left_(buffer == nullptr ? 0 : count) {}

  void Append(const char* text, std::size_t length) {
    const std::size_t fits = std::min(length, left_);
    if (fits != 0) std::memcpy(next_, text, fits);
    Advance(fits, length);
  }
  void Append(std::string_view text) { Append(text.data(), text.size()); }
  void Fill(char unit, std::size_t length) {
    const std::size_t fits = std::min(length, left_);
    if (fits != 0) std::memset(next_, unit, fits);
    Advance(fits, length);
  }
  // Writes one byte for each unit, and '?' for a unit outside of Latin-1.
  void Narrow(const char16_t* text, std::size_t length) {
    const std::size_t fits = std::min(length, left_);
    std::transform(text, text + fits, next_,
                   [](char16_t unit) { return unit > 0xFF ? '?' : static_cast<char>(unit); });
    Advance(fits, length);
  }

  [[nodiscard]] bool full() const { return overflowed_; }

  // Gives the result of the whole call, and writes the terminator if there is room for it.
  int Finish() {
    if (overflowed_ || written_ > INT_MAX) return -1;
    if (left_ != 0) *next_ = '\0';
    return static_cast<int>(written_);
  }

 private:
  void Advance(std::size_t fits, std::size_t length) {
    next_ += fits;
    left_ -= fits;
    written_ += fits;
    overflowed_ = overflowed_ || fits != length;
  }

  char* next_;
  std::size_t left_;
  std::size_t written_ = 0;
  bool overflowed_ = false;
};

}  // namespace sim

#endif  // PLATFORM_SIM_COREDLL_BOUNDED_OUTPUT_H_
