#include "tools/palsim/timeline/time_scale.h"

#include <algorithm>
#include <functional>

#include "tools/palsim/scenario/values.h"
#include "tools/palsim/timeline/timeline.h"

namespace palsim {
namespace {

// A spell is cut where it is long by itself, and longer than all shorter ones together by a
// quarter.
constexpr std::uint64_t kShortestCut = 400;
constexpr double kCutRatio = 1.25;
// No moment shall be drawn wider than this, however short the run.
constexpr double kMostPerMs = 4;

std::uint64_t CutLimit(const std::vector<std::uint64_t>& moments) {
  std::vector<std::uint64_t> lengths;
  for (std::size_t index = 1; index < moments.size(); ++index) {
    lengths.push_back(moments[index] - moments[index - 1]);
  }
  std::ranges::sort(lengths);
  std::uint64_t shorter = 0;
  for (const std::uint64_t length : lengths) {
    const double least = kCutRatio * static_cast<double>(shorter);
    if (shorter > 0 && length >= kShortestCut && static_cast<double>(length) > least) {
      return length - 1;
    }
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
  moments.erase(std::unique(moments.begin(), moments.end()), moments.end());
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
  const auto interval = std::ranges::lower_bound(intervals_, time_ms, {}, &Interval::end);
  if (interval == intervals_.end()) return width();
  const double part = static_cast<double>(time_ms - interval->begin) /
                      static_cast<double>(interval->end - interval->begin);
  return interval->from + part * (interval->to - interval->from);
}

std::uint64_t TimeScale::TickStep(double least) const {
  std::uint64_t step = 1;
  for (unsigned turn = 0; static_cast<double>(step) * per_ms_ < least; ++turn) {
    step = turn % 3 == 1 ? step / 2 * 5 : step * 2;  // 1, 2, 5, 10
  }
  return step;
}

std::vector<TimeScale::Tick> TimeScale::Ticks(double character_width) const {
  constexpr double kCharacters = 11;
  const double room = kCharacters * character_width;
  const std::uint64_t step = TickStep(room);
  std::vector<Tick> ticks;
  double free = 0;
  auto cut = intervals_.begin();  // the next one
  for (std::size_t index = 0; index < intervals_.size(); ++index) {
    const Interval& interval = intervals_[index];
    if (interval.cut) continue;
    const auto here = intervals_.begin() + static_cast<std::ptrdiff_t>(index);
    cut = std::find_if(std::max(cut, here), intervals_.end(), std::mem_fn(&Interval::cut));
    const double end = cut == intervals_.end() ? width() + room : cut->from;
    const auto add = [&](std::uint64_t time) {
      Tick tick{time, At(time), MomentText(time)};
      const double to = tick.at + character_width * static_cast<double>(tick.text.size() + 1);
      if (tick.at < free || to > end) return;
      free = to;
      ticks.push_back(std::move(tick));
    };
    if (index > 0 && intervals_[index - 1].cut) add(interval.begin);
    for (std::uint64_t time = (interval.begin + step - 1) / step * step; time <= interval.end;
         time += step) {
      if (time < interval.end || index + 1 == intervals_.size()) add(time);
    }
  }
  return ticks;
}

}  // namespace palsim
