// The one source of random choices: numbers that follow from a seed and how many were taken before.
#ifndef TOOLS_PALSIM_EXPLORE_CHOICES_H_
#define TOOLS_PALSIM_EXPLORE_CHOICES_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace palsim {

class Choices {
 public:
  explicit Choices(std::uint64_t seed) : seed_(Mix(seed)) {}

  std::uint64_t Number() { return Mix(seed_ + ++taken_ * kStep); }
  // From 0 to `count` - 1.
  std::size_t Below(std::size_t count) { return static_cast<std::size_t>(Number() % count); }
  std::uint32_t Between(std::uint32_t first, std::uint32_t last) {
    return first + static_cast<std::uint32_t>(Below(last - first + std::size_t{1}));
  }
  // True once in so many times.
  bool OneIn(std::size_t count) { return Below(count) == 0; }

  template <class List>
  const auto& Of(const List& list) {
    return list[Below(std::size(list))];
  }

 private:
  static constexpr std::uint64_t kStep = 0x9E3779B97F4A7C15;
  // SplitMix64: every bit of the answer depends on every bit of the number.
  static constexpr std::uint64_t Mix(std::uint64_t number) {
    number = (number ^ (number >> 30)) * 0xBF58476D1CE4E5B9;
    number = (number ^ (number >> 27)) * 0x94D049BB133111EB;
    return number ^ (number >> 31);
  }

  std::uint64_t seed_;
  std::uint64_t taken_ = 0;
};

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPLORE_CHOICES_H_
