// Where a time stands on the axis: in proportion, but for long spells in which nothing happens,
// which are cut short, and for moments close together, which keep apart.
#ifndef TOOLS_PALSIM_TIMELINE_TIME_SCALE_H_
#define TOOLS_PALSIM_TIMELINE_TIME_SCALE_H_

#include <cstdint>
#include <vector>

namespace palsim {

struct Timeline;

// Every time at which something begins, ends or changes, in order, from 0 to the run's length.
[[nodiscard]] std::vector<std::uint64_t> MomentsOf(const Timeline& timeline);

struct ScaleSizes {
  double width = 0;           // about how wide all should be
  double least_interval = 0;  // between two moments
  double gap = 0;             // of a spell that is cut
};

class TimeScale {
 public:
  struct Interval {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    double from = 0;
    double to = 0;
    bool cut = false;
  };

  TimeScale(const std::vector<std::uint64_t>& moments, const ScaleSizes& sizes);

  [[nodiscard]] double At(std::uint64_t time_ms) const;
  [[nodiscard]] double width() const { return intervals_.empty() ? 0 : intervals_.back().to; }
  [[nodiscard]] const std::vector<Interval>& intervals() const { return intervals_; }
  // The distance of two ticks: 1, 2 or 5 times a power of ten, so that they stand `least` apart.
  [[nodiscard]] std::uint64_t TickStep(double least) const;

 private:
  std::vector<Interval> intervals_;
  double per_ms_ = 1;
};

}  // namespace palsim

#endif  // TOOLS_PALSIM_TIMELINE_TIME_SCALE_H_
