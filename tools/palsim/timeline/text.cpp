#include "tools/palsim/timeline/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "tools/palsim/scenario/values.h"
#include "tools/palsim/timeline/journal_text.h"
#include "tools/palsim/timeline/time_scale.h"

namespace palsim {
namespace {

using sim::Effect;

constexpr std::size_t kLabelWidth = 22;
constexpr ScaleSizes kTextSizes{.width = 72, .least_interval = 2, .gap = 5};

constexpr std::array kForTheLogAlone{Effect::kTrace, Effect::kModule, Effect::kDebug};

// One lane as a row of cells of one column each.
class Row {
 public:
  explicit Row(const TimeScale& scale)
      : scale_(scale), cells_(static_cast<std::size_t>(scale.width()) + 1, " ") {}

  void Fill(std::uint64_t begin, std::uint64_t end, std::string_view cell) {
    const std::size_t from = Column(begin);
    const std::size_t to = std::max(from + 1, Column(end));
    for (std::size_t at = from; at < std::min(to, cells_.size()); ++at) cells_[at] = cell;
  }
  // ASCII alone; where there is no room for it all, what fits.
  void Write(std::uint64_t time, std::string_view text) {
    std::size_t at = Column(time);
    for (const char character : text) {
      if (at < cells_.size()) cells_[at++] = character;
    }
  }
  [[nodiscard]] std::string Line(std::string_view label) const {
    std::string line;
    for (const std::string& cell : cells_) line += cell;
    line.erase(line.find_last_not_of(' ') + 1);
    return fmt::format("  {:<{}}{}\n", label.substr(0, kLabelWidth - 1), kLabelWidth, line);
  }

 private:
  [[nodiscard]] std::size_t Column(std::uint64_t time) const {
    return std::min(static_cast<std::size_t>(scale_.At(time)), cells_.size() - 1);
  }
  const TimeScale& scale_;
  std::vector<std::string> cells_;
};

std::string AxisLine(const TimeScale& scale) {
  Row row(scale);
  for (const TimeScale::Interval& interval : scale.intervals()) {
    if (interval.cut) row.Fill(interval.begin, interval.end, "~");
  }
  for (const TimeScale::Tick& tick : scale.Ticks(1)) row.Write(tick.time, "|" + tick.text);
  return row.Line("");
}

std::string ProcessLines(const Timeline& timeline, const TimeScale& scale) {
  std::string lines;
  for (const ProcessLine& process : timeline.processes) {
    Row row(scale);
    row.Fill(process.begin, process.end, "─");
    for (const CallSpan& call : process.calls) row.Fill(call.begin, call.end, "█");
    if (process.killed) row.Fill(process.end, process.end, "✕");
    lines += row.Line(process.name);
  }
  return lines;
}

std::string MutexLines(const Timeline& timeline, const TimeScale& scale) {
  std::string lines;
  for (const MutexLine& mutex : timeline.mutexes) {
    Row holds(scale);
    for (const HoldSpan& hold : mutex.holds) holds.Fill(hold.begin, hold.end, "▒");
    lines += holds.Line(mutex.name);
    Row waits(scale);
    for (const WaitSpan& wait : mutex.waits) waits.Fill(wait.begin, wait.end, "·");
    if (!mutex.waits.empty()) lines += waits.Line("  waited for");
  }
  return lines;
}

// The level at the start and behind each change.
std::string LevelLine(std::string_view label, const std::vector<Level>& levels,
                      const TimeScale& scale, std::uint32_t (*number)(std::uint32_t)) {
  if (levels.empty()) return {};
  Row row(scale);
  for (std::size_t index = 0; index < levels.size(); ++index) {
    if (index > 0 && levels[index - 1].value == levels[index].value) continue;
    row.Write(levels[index].time, fmt::format("{:<4}", number(levels[index].value)));
  }
  return row.Line(label);
}

std::string SoundLines(const Timeline& timeline, const TimeScale& scale) {
  std::string lines;
  Row sounds(scale);
  for (const SoundSpan& sound : timeline.sounds) sounds.Fill(sound.begin, sound.end, "♪");
  if (!timeline.sounds.empty()) lines += sounds.Line("sound");
  lines += LevelLine("volume %", timeline.volume, scale,
                     [](std::uint32_t word) { return (word & 0xFFFF) * 100 / 0xFFFF; });
  lines += LevelLine("gain", timeline.gain, scale, [](std::uint32_t gain) { return gain; });
  Row vibrations(scale);
  for (const VibrationSpan& span : timeline.vibrations) vibrations.Fill(span.begin, span.end, "≈");
  if (!timeline.vibrations.empty()) lines += vibrations.Line("vibration");
  for (const LedLine& led : timeline.leds) {
    Row row(scale);
    for (const LedSpan& span : led.spans) row.Fill(span.begin, span.end, span.blinks ? "○" : "●");
    lines += row.Line("LED " + led.number);
  }
  return lines;
}

std::string LevelsText(const std::vector<Level>& volume, const std::vector<Level>& gain,
                       const Level& (std::vector<Level>::*pick)() const) {
  std::string text;
  if (!volume.empty()) {
    const std::uint32_t word = (volume.*pick)().value;
    text = fmt::format("volume {} (0x{:08X})", VolumeText(word), word);
  }
  if (!gain.empty()) {
    text += fmt::format("{}gain {}", text.empty() ? "" : ", ", (gain.*pick)().value);
  }
  return text;
}

std::string Wrapped(std::string_view text) {
  constexpr std::size_t kWidth = 92;
  std::string lines;
  while (text.size() > kWidth && text.rfind(' ', kWidth) != std::string_view::npos) {
    const std::size_t blank = text.rfind(' ', kWidth);
    lines += fmt::format("  {}\n", text.substr(0, blank));
    text.remove_prefix(blank + 1);
  }
  return lines + fmt::format("  {}\n", text);
}

bool IsForTheLogAlone(const sim::JournalEntry& entry) {
  return std::ranges::find(kForTheLogAlone, entry.effect) != kForTheLogAlone.end();
}

// Long values, binary ones above all, are for the journal to show whole.
std::string Shortened(std::string text) {
  constexpr std::size_t kMost = 120;
  if (text.size() <= kMost) return text;
  text.resize(std::min(text.find_last_of(" ,", kMost), kMost));
  return text + " ...";
}

std::string Entries(const Timeline& timeline) {
  std::string lines;
  std::string last_time;
  std::string last_name;
  for (const sim::JournalEntry& entry : timeline.run.entries) {
    if (IsForTheLogAlone(entry)) continue;
    std::string time = MomentText(entry.time_ms);
    std::string name = timeline.ProcessName(entry.process_id);
    const bool same_time = time == last_time;
    const bool same_name = same_time && name == last_name;
    lines += fmt::format("  {:>9}  {:<14} {}\n", same_time ? "" : time, same_name ? "" : name,
                         Shortened(ReadableText(entry)));
    last_time = std::move(time);
    last_name = std::move(name);
  }
  return lines;
}

}  // namespace

std::string ReadableText(const sim::JournalEntry& entry) {
  if (entry.effect == Effect::kCall) {
    const std::size_t equals = entry.text.rfind(") = ");
    if (equals == std::string::npos) return "calls " + entry.text;
    return fmt::format("{} returns {}", entry.text.substr(0, equals + 1),
                       entry.text.substr(equals + 4));
  }
  if (entry.effect == Effect::kProcess) {
    const auto [name, what] =
        SplitAtWord(entry.text, {"started", "attached", "detaches", "ended", "killed"});
    return what.empty() ? entry.text : what == "killed" ? "is killed" : what;
  }
  if (const auto word = NumberAfter(entry.text, "volume ");
      entry.effect == Effect::kAudio && word) {
    return fmt::format("volume {} (0x{:08X})", VolumeText(*word), *word);
  }
  if (entry.effect == Effect::kVibration) return "vibrates: " + entry.text;
  return entry.text;
}

std::string TimelineText(const Timeline& timeline) {
  const TimeScale scale(MomentsOf(timeline), kTextSizes);
  std::string text = timeline.run.title + "\n";
  for (const std::string& about : timeline.run.about) text += Wrapped(about);
  text += "\n" + AxisLine(scale) + ProcessLines(timeline, scale) + MutexLines(timeline, scale) +
          SoundLines(timeline, scale) + "\n";
  const std::string before = LevelsText(timeline.volume, timeline.gain, &std::vector<Level>::front);
  const std::string after = LevelsText(timeline.volume, timeline.gain, &std::vector<Level>::back);
  if (!before.empty()) text += fmt::format("  {:>9}  {}\n", "before", before);
  text += Entries(timeline);
  if (!after.empty()) text += fmt::format("  {:>9}  {}\n", "after", after);
  return text;
}

}  // namespace palsim
