// Where a time stands on the axis: in proportion, but for long spells in which nothing happens,
// which are cut short, and for moments close together, which keep apart.
#ifndef TOOLS_PALSIM_TIMELINE_TIME_SCALE_H_
#define TOOLS_PALSIM_TIMELINE_TIME_SCALE_H_

#include <cstdint>
#include <string>
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

  // Times to write on the axis, each with its text beginning at its place: round ones, and where
  // the axis goes on behind a cut. No text is in another's way, or in a cut.
  struct Tick {
    std::uint64_t time = 0;
    double at = 0;
    std::string text;
  };
  [[nodiscard]] std::vector<Tick> Ticks(double character_width) const;

 private:
  // 1, 2 or 5 times a power of ten.
  [[nodiscard]] std::uint64_t TickStep(double least) const;

  std::vector<Interval> intervals_;
  double per_ms_ = 1;
};

}  // namespace palsim

#endif  // TOOLS_PALSIM_TIMELINE_TIME_SCALE_H_
