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

constexpr std::array kForTheLogAlone{Effect::kTrace, Effect::kModule, Effect::kDebug};

// A terminal has no more columns for all of them. Elsewhere a long run makes long lines, up to a
// length.
TimeScale ScaleFor(const Timeline& timeline, std::size_t columns) {
  constexpr std::size_t kUsual = 72;
  constexpr std::size_t kLeast = 24;
  constexpr double kLongest = 500;
  constexpr std::size_t kBeside = kLabelWidth + 14;  // the lanes' names, and the axis' last text
  const std::size_t room = columns == 0 ? kUsual : std::max(columns, kBeside + kLeast) - kBeside;
  const auto width = static_cast<double>(room);
  const std::vector<std::uint64_t> moments = MomentsOf(timeline);
  TimeScale scale(moments, {.width = width, .least_interval = 2, .gap = 5});
  if (scale.width() <= (columns == 0 ? kLongest : width)) return scale;
  return {moments, {.width = width, .least_interval = 0, .gap = 0}};
}

// One lane as a row of cells of one column each. A restart goes through all of them.
class Row {
 public:
  Row(const Timeline& timeline, const TimeScale& scale)
      : timeline_(timeline),
        scale_(scale),
        cells_(static_cast<std::size_t>(scale.width()) + 1, " ") {}

  void Fill(std::uint64_t begin, std::uint64_t end, std::string_view cell) {
    const std::size_t from = Column(begin);
    const std::size_t to = std::max(from + 1, Column(end));
    for (std::size_t at = from; at < std::min(to, cells_.size()); ++at) cells_[at] = cell;
  }
  // ASCII alone. It may go on behind the last time.
  void Write(std::uint64_t time, std::string_view text) {
    const std::size_t from = Column(time);
    if (from + text.size() > cells_.size()) cells_.resize(from + text.size(), " ");
    for (std::size_t at = 0; at < text.size(); ++at) cells_[from + at] = text[at];
  }
  [[nodiscard]] std::string Line(std::string_view label) const {
    std::vector<std::string> cells = cells_;
    for (const OutsideEvent& restart : timeline_.restarts) {
      std::string& cell = cells[Column(restart.time)];
      if (cell == " " || cell.size() > 1) cell = "║";  // texts stay
    }
    std::string line = fmt::format("  {:<{}}", label.substr(0, kLabelWidth - 1), kLabelWidth);
    for (const std::string& cell : cells) line += cell;
    line.erase(line.find_last_not_of(' ') + 1);
    return line + "\n";
  }

 private:
  [[nodiscard]] std::size_t Column(std::uint64_t time) const {
    return std::min(static_cast<std::size_t>(scale_.At(time)),
                    static_cast<std::size_t>(scale_.width()));
  }
  const Timeline& timeline_;
  const TimeScale& scale_;
  std::vector<std::string> cells_;
};

std::string AxisLine(const Timeline& timeline, const TimeScale& scale) {
  Row row(timeline, scale);
  for (const TimeScale::Interval& interval : scale.intervals()) {
    if (interval.cut) row.Fill(interval.begin, interval.end, "~");
  }
  for (const TimeScale::Tick& tick : scale.Ticks(1)) row.Write(tick.time, "|" + tick.text);
  return row.Line("");
}

std::string ProcessLines(const Timeline& timeline, const TimeScale& scale) {
  std::string lines;
  for (const ProcessLine& process : timeline.processes) {
    Row row(timeline, scale);
    row.Fill(process.begin, process.end, "─");
    for (const CallSpan& call : process.calls) row.Fill(call.begin, call.end, "█");
    for (const CallSpan& call : process.calls) {
      if (call.failed) row.Fill(call.end, call.end, "✗");
    }
    if (process.killed) row.Fill(process.end, process.end, "✕");
    lines += row.Line(process.name);
  }
  return lines;
}

// A row for each process that held the mutex or waited for it.
std::string MutexLines(const Timeline& timeline, const TimeScale& scale) {
  std::string lines;
  for (const MutexLine& mutex : timeline.mutexes) {
    lines += Row(timeline, scale).Line(mutex.name);
    for (const std::uint32_t user : mutex.Users()) {
      Row row(timeline, scale);
      for (const WaitSpan& wait : mutex.waits) {
        if (wait.process == user) row.Fill(wait.begin, wait.end, "·");
      }
      for (const HoldSpan& hold : mutex.holds) {
        if (hold.process == user) row.Fill(hold.begin, hold.end, "▒");
      }
      lines += row.Line("  " + timeline.ProcessName(user));
    }
  }
  return lines;
}

std::string ExpectationLine(const Timeline& timeline, const TimeScale& scale) {
  if (timeline.expectations.empty()) return {};
  Row row(timeline, scale);
  for (const bool held : {true, false}) {
    for (const Expectation& each : timeline.expectations) {
      if (each.held == held) row.Fill(each.time, each.time, held ? "✓" : "✗");
    }
  }
  return row.Line("expectations");
}

// The level at the start and behind each change.
std::string LevelLine(std::string_view label, const std::vector<Level>& levels,
                      const Timeline& timeline, const TimeScale& scale,
                      std::uint32_t (*number)(std::uint32_t)) {
  if (levels.empty()) return {};
  Row row(timeline, scale);
  for (std::size_t index = 0; index < levels.size(); ++index) {
    if (index > 0 && levels[index - 1].value == levels[index].value) continue;
    row.Write(levels[index].time, fmt::format("{:<4}", number(levels[index].value)));
  }
  return row.Line(label);
}

std::string SoundLines(const Timeline& timeline, const TimeScale& scale) {
  std::string lines;
  Row sounds(timeline, scale);
  for (const SoundSpan& sound : timeline.sounds) sounds.Fill(sound.begin, sound.end, "♪");
  if (!timeline.sounds.empty()) lines += sounds.Line("sound");
  lines += LevelLine("volume %", timeline.volume, timeline, scale,
                     [](std::uint32_t word) { return (word & 0xFFFF) * 100 / 0xFFFF; });
  lines +=
      LevelLine("gain", timeline.gain, timeline, scale, [](std::uint32_t gain) { return gain; });
  Row vibrations(timeline, scale);
  for (const VibrationSpan& span : timeline.vibrations) vibrations.Fill(span.begin, span.end, "≈");
  if (!timeline.vibrations.empty()) lines += vibrations.Line("vibration");
  for (const LedLine& led : timeline.leds) {
    Row row(timeline, scale);
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

std::string Wrapped(std::string_view text, std::size_t columns) {
  const std::size_t width = std::max<std::size_t>(columns, 24) - 4;
  std::string lines;
  while (text.size() > width && text.rfind(' ', width) != std::string_view::npos) {
    const std::size_t blank = text.rfind(' ', width);
    lines += fmt::format("  {}\n", text.substr(0, blank));
    text.remove_prefix(blank + 1);
  }
  return lines + fmt::format("  {}\n", text);
}

bool IsForTheLogAlone(const sim::JournalEntry& entry) {
  return std::ranges::find(kForTheLogAlone, entry.effect) != kForTheLogAlone.end();
}

// Long values, binary ones above all, are for the journal to show whole.
std::string Shortened(std::string text, std::size_t most) {
  if (text.size() <= most) return text;
  std::size_t end = std::min(text.find_last_of(" ,", most), most);
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  text.resize(end);
  return text + " ...";
}

// The one that must be readable on any terminal.
bool IsFailedExpectation(const sim::JournalEntry& entry) {
  return entry.effect == Effect::kExpect && !ExpectationIn(entry.text).held;
}

std::string Entries(const Timeline& timeline, std::size_t most) {
  std::string lines;
  std::string last_time;
  std::string last_name;
  for (const sim::JournalEntry& entry : timeline.run.entries) {
    if (IsForTheLogAlone(entry)) continue;
    std::string time = MomentText(entry.time_ms);
    std::string name = timeline.Actor(entry);
    const bool same_time = time == last_time;
    const bool same_name = same_time && name == last_name;
    lines += fmt::format(
        "  {:>9}  {:<14} {}\n", same_time ? "" : time, same_name ? "" : name,
        IsFailedExpectation(entry) ? ReadableText(entry) : Shortened(ReadableText(entry), most));
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
    const std::string result = entry.text.substr(equals + 4);
    return fmt::format("{}{} returns {}", IsFailure(result) ? kFailedMark : "",
                       entry.text.substr(0, equals + 1), result);
  }
  if (entry.effect == Effect::kExpect) {
    return fmt::format("{}{}", ExpectationIn(entry.text).held ? kHeldMark : kFailedMark,
                       entry.text);
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

std::string TimelineText(const Timeline& timeline, std::size_t columns) {
  constexpr std::size_t kUsual = 96;
  constexpr std::size_t kUsualEntry = 120;
  constexpr std::size_t kBeforeEntry = 30;
  const std::size_t width = columns == 0 ? kUsual : columns;
  const TimeScale scale = ScaleFor(timeline, columns);
  std::string text = timeline.run.title + "\n";
  for (const std::string& about : timeline.run.about) text += Wrapped(about, width);
  if (const std::string verdict = timeline.Verdict(); !verdict.empty()) {
    text += fmt::format("  {}{}\n", timeline.Failed() ? kFailedMark : kHeldMark, verdict);
  }
  text += "\n" + AxisLine(timeline, scale) + ExpectationLine(timeline, scale) +
          ProcessLines(timeline, scale) + MutexLines(timeline, scale) +
          SoundLines(timeline, scale) + "\n";
  const std::string before = LevelsText(timeline.volume, timeline.gain, &std::vector<Level>::front);
  const std::string after = LevelsText(timeline.volume, timeline.gain, &std::vector<Level>::back);
  if (!before.empty()) text += fmt::format("  {:>9}  {}\n", "before", before);
  text += Entries(timeline,
                  columns == 0 ? kUsualEntry : std::max(columns, 2 * kBeforeEntry) - kBeforeEntry);
  if (!after.empty()) text += fmt::format("  {:>9}  {}\n", "after", after);
  return text;
}

}  // namespace palsim
