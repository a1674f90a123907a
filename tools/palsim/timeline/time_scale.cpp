#include "tools/palsim/timeline/time_scale.h"

#include <algorithm>

#include "tools/palsim/timeline/timeline.h"

namespace palsim {
namespace {

// A spell is cut where it is long by itself and a good part of the whole run.
constexpr std::uint64_t kShortestCut = 400;
constexpr std::uint64_t kCutPart = 5;
// No moment shall be drawn wider than this, however short the run.
constexpr double kMostPerMs = 2;

std::uint64_t CutLimit(const std::vector<std::uint64_t>& moments) {
  std::vector<std::uint64_t> lengths;
  for (std::size_t index = 1; index < moments.size(); ++index) {
    lengths.push_back(moments[index] - moments[index - 1]);
  }
  std::ranges::sort(lengths);
  // From the longest on: what is longer than a part of all that is shorter than it.
  std::uint64_t shorter = 0;
  for (const std::uint64_t length : lengths) {
    if (length >= kShortestCut && length > kCutPart * shorter / 4) return length - 1;
    shorter += length;
  }
  return moments.back();
}

}  // namespace

std::vector<std::uint64_t> MomentsOf(const Timeline& timeline) {
  std::vector<std::uint64_t> moments{0, timeline.length_ms};
  for (const sim::JournalEntry& entry : timeline.run.entries) moments.push_back(entry.time_ms);
  for (const SoundSpan& sound : timeline.sounds) moments.push_back(sound.end);
  for (const VibrationSpan& vibration : timeline.vibrations) moments.push_back(vibration.end);
  for (const MutexLine& mutex : timeline.mutexes) {
    for (const WaitSpan& wait : mutex.waits) moments.push_back(wait.begin);
  }
  std::ranges::sort(moments);
  moments.erase(std::ranges::unique(moments).begin(), moments.end());
  return moments;
}

TimeScale::TimeScale(const std::vector<std::uint64_t>& moments, const ScaleSizes& sizes) {
  const std::uint64_t limit = CutLimit(moments);
  double active = 0;
  double gaps = 0;
  for (std::size_t index = 1; index < moments.size(); ++index) {
    const std::uint64_t length = moments[index] - moments[index - 1];
    const bool cut = length > limit;
    intervals_.push_back({moments[index - 1], moments[index], 0, 0, cut});
    (cut ? gaps : active) += cut ? sizes.gap : static_cast<double>(length);
  }
  if (active > 0)
    per_ms_ = std::min(kMostPerMs, std::max(sizes.width - gaps, sizes.width / 2) / active);
  double at = 0;
  for (Interval& interval : intervals_) {
    interval.from = at;
    at += interval.cut ? sizes.gap
                       : std::max(sizes.least_interval,
                                  per_ms_ * static_cast<double>(interval.end - interval.begin));
    interval.to = at;
  }
}

double TimeScale::At(std::uint64_t time_ms) const {
  for (const Interval& interval : intervals_) {
    if (time_ms > interval.end) continue;
    const double part = static_cast<double>(time_ms - interval.begin) /
                        static_cast<double>(interval.end - interval.begin);
    return interval.from + part * (interval.to - interval.from);
  }
  return width();
}

std::uint64_t TimeScale::TickStep(double least) const {
  std::uint64_t step = 1;
  for (unsigned turn = 0; static_cast<double>(step) * per_ms_ < least; ++turn) {
    step = turn % 3 == 1 ? step / 2 * 5 : step * 2;  // 1, 2, 5, 10
  }
  return step;
}

}  // namespace palsim
