#include "tools/palsim/timeline/chart.h"

#include <fmt/format.h>

#include <algorithm>

#include "tools/palsim/scenario/values.h"
#include "tools/palsim/timeline/journal_text.h"

namespace palsim {
namespace {

constexpr ScaleSizes kChartSizes{.width = 880, .least_interval = 10, .gap = 68};
constexpr double kLeft = 58;  // before the axis begins: the levels before the run
constexpr double kMargin = 8;
constexpr double kRight = 160;  // for the last labels
constexpr double kAxisHeight = 34;
constexpr double kRowHeight = 26;
constexpr double kLeastLane = 40;
constexpr double kLanePadding = 5;
constexpr double kBarHeight = 18;
constexpr double kLeastBar = 4;
constexpr double kLevelHeight = 62;
constexpr double kTextGap = 6;
constexpr std::size_t kMostRows = 8;

std::string SpanTitle(std::string_view what, std::uint64_t begin, std::uint64_t end) {
  return fmt::format("{}\n{} to {}: {}", what, MomentText(begin), MomentText(end),
                     TimeText(end - begin));
}

std::string NumberLabel(std::uint32_t value) {
  return fmt::format("{}", value);
}

}  // namespace

Chart::Chart(const Timeline& timeline)
    : timeline_(timeline),
      scale_(MomentsOf(timeline), kChartSizes),
      width_(kLeft + std::max(kChartSizes.width, scale_.width()) + kRight),
      top_(kAxisHeight) {
  AddOutside();
  AddProcesses();
  AddMutexes();
  AddSounds();
  AddVolume();
  AddGain();
  AddVibrations();
  AddLeds();
  AddAxis();
}

std::string Chart::Html() const {
  return fmt::format(
      "<div class=\"chart\"><div class=\"names\" style=\"height:{0:.0f}px\">\n{1}</div>\n"
      "<div class=\"scroll\" tabindex=\"0\"><div class=\"stack\">\n{2}{3}</div></div></div>\n",
      top_, names_, back_.Element(width_, top_, "back", "The lanes' background"),
      plot_.Element(width_, top_, "plot", "What went on at which time"));
}

void Chart::BeginLane(const std::string& name, const std::string& kind, double height) {
  height_ = height;
  names_ += fmt::format(
      "<div class=\"name\" style=\"top:{:.0f}px;height:{:.0f}px\" title=\"{}\"><b>{}</b>"
      "<small>{}</small></div>\n",
      top_, height, EscapeHtml(name), EscapeHtml(name), EscapeHtml(kind));
  back_.Line(0, top_, width_, top_, "rule");
}

void Chart::EndLane() {
  top_ += height_;
}

Chart::Placed Chart::Measure(const Bar& bar) const {
  Placed placed{};
  placed.from = kLeft + scale_.At(bar.begin);
  const double end = std::max(placed.from + kLeastBar, kLeft + scale_.At(bar.end));
  const double text = TextWidth(bar.text);
  const bool inside = text + 2 * kTextGap <= end - placed.from;
  placed.text_at = inside ? placed.from + kTextGap : end + kTextGap;
  placed.to = inside ? end : placed.text_at + text;
  placed.has_text = !bar.text.empty();
  return placed;
}

// Each bar with its text in the first row where there is room for both. Behind the last row texts
// are left out: they still show under the pointer.
std::vector<Chart::Placed> Chart::Place(const std::vector<Bar>& bars) const {
  std::vector<double> row_ends;
  std::vector<Placed> all;
  for (const Bar& bar : bars) {
    Placed placed = Measure(bar);
    const auto row =
        std::ranges::find_if(row_ends, [&](double end) { return end + kTextGap <= placed.from; });
    placed.row = static_cast<std::size_t>(row - row_ends.begin());
    if (placed.row >= kMostRows) {
      placed.row = kMostRows - 1;
      placed.has_text = false;
    } else if (row == row_ends.end()) {
      row_ends.push_back(placed.to);
    } else {
      *row = placed.to;
    }
    all.push_back(placed);
  }
  return all;
}

void Chart::DrawBar(const Bar& bar, const Placed& placed) {
  const double y = top_ + static_cast<double>(placed.row) * kRowHeight;
  const double bar_y = y + (kRowHeight - kBarHeight) / 2;
  const double end = std::max(placed.from + kLeastBar, kLeft + scale_.At(bar.end));
  plot_.Rectangle(placed.from, bar_y, end - placed.from, kBarHeight, "bar " + bar.classes,
                  bar.title);
  if (!placed.has_text) return;
  const bool inside = placed.text_at < end;
  plot_.Text(placed.text_at, bar_y + kBarHeight - 5, bar.text,
             inside ? "in " + bar.classes : std::string("out"), bar.title);
}

void Chart::AddBars(const std::string& name, const std::string& kind,
                    const std::vector<Bar>& bars) {
  const std::vector<Placed> placed = Place(bars);
  std::size_t rows = 1;
  for (const Placed& place : placed) rows = std::max(rows, place.row + 1);
  BeginLane(name, kind,
            std::max(kLeastLane, static_cast<double>(rows) * kRowHeight + 2 * kLanePadding));
  top_ += kLanePadding;
  for (std::size_t index = 0; index < bars.size(); ++index) DrawBar(bars[index], placed[index]);
  top_ -= kLanePadding;
  EndLane();
}

std::string Chart::Colour(std::uint32_t process) const {
  const auto found = std::ranges::find(timeline_.processes, process, &Span::process);
  const auto index = static_cast<std::size_t>(found - timeline_.processes.begin());
  return fmt::format("p{}", index % kProcessColours);
}

void Chart::AddOutside() {
  std::vector<Bar> bars;
  for (const OutsideEvent& event : timeline_.outside) {
    bars.push_back({event.time, event.time, ShortText(event.text), "outside",
                    fmt::format("{}\nat {}", event.text, MomentText(event.time))});
  }
  if (!bars.empty()) AddBars("from outside", "events", bars);
}

void Chart::AddProcesses() {
  for (const ProcessLine& process : timeline_.processes) {
    std::vector<Bar> bars;
    for (const CallSpan& call : process.calls) {
      const std::string result = call.result.empty() ? "did not return" : call.result;
      bars.push_back({call.begin, call.end, call.call, Colour(process.process),
                      SpanTitle(call.call + " = " + result, call.begin, call.end)});
    }
    const double life_y = top_ + kLanePadding + kRowHeight / 2;
    const double from = kLeft + scale_.At(process.begin);
    const double to = std::max(from + 2, kLeft + scale_.At(process.end));
    plot_.Line(from, life_y, to, life_y, "life " + Colour(process.process));
    if (process.killed) plot_.Line(to, life_y - 12, to, life_y + 12, "killed");
    AddBars(process.name, fmt::format("process {}", process.process), bars);
  }
}

void Chart::AddMutexes() {
  constexpr std::string_view kOwn = "DVLORQPAL_";
  for (const MutexLine& mutex : timeline_.mutexes) {
    std::vector<Bar> bars;
    for (const HoldSpan& hold : mutex.holds) {
      const std::string name = timeline_.ProcessName(hold.process);
      const std::string how = hold.abandoned ? " held it and was killed" : " holds it";
      bars.push_back({hold.begin, hold.end, name, Colour(hold.process),
                      SpanTitle(name + how, hold.begin, hold.end)});
    }
    for (const WaitSpan& wait : mutex.waits) {
      const std::string name = timeline_.ProcessName(wait.process);
      const std::string text = name + (wait.in_vain ? " waits in vain" : " waits");
      bars.push_back({wait.begin, wait.end, text, "wait " + Colour(wait.process),
                      SpanTitle(text, wait.begin, wait.end)});
    }
    std::ranges::stable_sort(bars, {}, &Bar::begin);
    AddBars(mutex.name.starts_with(kOwn) ? mutex.name.substr(kOwn.size()) : mutex.name, "mutex",
            bars);
  }
}

void Chart::AddSounds() {
  std::vector<Bar> bars;
  for (const SoundSpan& sound : timeline_.sounds) {
    std::string text = fmt::format("{} {}", FileName(sound.path), TimeText(sound.length_ms));
    if (sound.looping) text += ", looping";
    const std::string how = sound.stopped ? ", stopped" : "";
    bars.push_back({sound.begin, sound.end, text, "sound",
                    SpanTitle(fmt::format("{}, {}{}{}", sound.path, TimeText(sound.length_ms),
                                          sound.looping ? ", looping" : "", how),
                              sound.begin, sound.end)});
  }
  if (!bars.empty()) AddBars("sound", "wave files", bars);
}

void Chart::AddSteps(const std::vector<Level>& levels, double most, const std::string& classes,
                     std::string (*text)(std::uint32_t value)) {
  constexpr double kRoomAbove = 18;
  const double bottom = top_ + height_ - 4;
  const auto y_of = [&](std::uint32_t value) {
    return bottom - (height_ - 4 - kRoomAbove) * static_cast<double>(value) / most;
  };
  std::string line = fmt::format("M{:.1f} {:.1f}H{:.1f}", kMargin, y_of(levels[0].value), kLeft);
  plot_.Text(kMargin, y_of(levels[0].value) - 5, text(levels[0].value), "level", "before the run");
  const double last = kLeft + scale_.At(timeline_.length_ms);
  double label_end = kMargin;
  std::string passing;  // levels that lasted no time
  for (std::size_t index = 0; index < levels.size(); ++index) {
    const Level& level = levels[index];
    const bool is_last = index + 1 == levels.size();
    const std::uint64_t until = is_last ? timeline_.length_ms : levels[index + 1].time;
    const double x = kLeft + scale_.At(level.time);
    const double end = kLeft + scale_.At(until);
    const double y = y_of(level.value);
    line += fmt::format("H{:.1f}V{:.1f}H{:.1f}", x, y, end);
    const std::string label = passing + text(level.value);
    plot_.Rectangle(x, top_, std::max(kLeastBar, end - x), height_, "hit",
                    SpanTitle(label, level.time, until));
    const bool changes = index > 0 && levels[index - 1].value != level.value;
    passing = changes && until == level.time ? label + ", " : "";
    const bool runs_into_last = x + 3 + TextWidth(label) > last;
    if (!changes || !passing.empty() || x + 3 < label_end || runs_into_last) continue;
    plot_.Text(x + 3, y - 5, label, "level");
    label_end = x + 3 + TextWidth(label) + kTextGap;
  }
  plot_.Text(last + kTextGap, y_of(levels.back().value) + 4, text(levels.back().value), "level",
             "after the run");
  plot_.Path(fmt::format("{}V{:.1f}H{:.1f}Z", line, bottom, kMargin), classes + " area");
  plot_.Path(line, classes + " curve");
  plot_.Line(kMargin, bottom, last, bottom, "base");
}

void Chart::AddVolume() {
  if (timeline_.volume.empty()) return;
  constexpr double kLoudest = 0xFFFF;
  std::vector<Level> left;
  std::vector<Level> right;
  for (const Level& level : timeline_.volume) {
    left.push_back({level.time, level.value & 0xFFFF});
    right.push_back({level.time, level.value >> 16});
  }
  const auto text = [](std::uint32_t half) { return VolumeText(half << 16 | half); };
  const bool equal = std::ranges::equal(left, right, {}, &Level::value, &Level::value);
  BeginLane("volume", equal ? "wave-out level" : "wave-out, left", kLevelHeight);
  AddSteps(left, kLoudest, "volume", text);
  EndLane();
  if (equal) return;
  BeginLane("volume", "wave-out, right", kLevelHeight);
  AddSteps(right, kLoudest, "volume", text);
  EndLane();
}

void Chart::AddGain() {
  if (timeline_.gain.empty()) return;
  const std::uint32_t most = std::ranges::max(timeline_.gain, {}, &Level::value).value;
  BeginLane("gain", "of the codec", kLevelHeight);
  AddSteps(timeline_.gain, std::max(1.0, static_cast<double>(most)), "gain", &NumberLabel);
  EndLane();
}

void Chart::AddVibrations() {
  std::vector<Bar> bars;
  for (const VibrationSpan& vibration : timeline_.vibrations) {
    const std::string text =
        fmt::format("preset {} {}", vibration.preset, TimeText(vibration.end - vibration.begin));
    bars.push_back(
        {vibration.begin, vibration.end, text, "vibration",
         SpanTitle("vibrates with preset " + vibration.preset, vibration.begin, vibration.end)});
  }
  if (!bars.empty()) AddBars("vibration", "presets", bars);
}

void Chart::AddLeds() {
  for (const LedLine& led : timeline_.leds) {
    std::vector<Bar> bars;
    for (const LedSpan& span : led.spans) {
      const std::string what = span.blinks ? "blinks" : "on";
      bars.push_back(
          {span.begin, span.end, fmt::format("{} {}", what, TimeText(span.end - span.begin)),
           span.blinks ? "led blinks" : "led",
           SpanTitle(what + (span.open ? ", at the end still" : ""), span.begin, span.end)});
    }
    AddBars("LED " + led.number, "light", bars);
  }
}

void Chart::AddAxis() {
  const double text_y = kAxisHeight - 12;
  for (const TimeScale::Interval& interval : scale_.intervals()) {
    if (!interval.cut) continue;
    const double from = kLeft + interval.from + 3;
    const double width = interval.to - interval.from - 6;
    back_.Rectangle(from, 4, width, top_ - 4, "gap");
    const std::string text = TimeText(interval.end - interval.begin);
    plot_.Text(from + width / 2, text_y, text, "axis gaptext",
               fmt::format("{} in which nothing changes", text));
  }
  for (const TimeScale::Tick& tick : scale_.Ticks(TextWidth("0"))) {
    back_.Line(kLeft + tick.at, kAxisHeight - 24, kLeft + tick.at, top_, "tick");
    plot_.Text(kLeft + tick.at + 4, text_y, tick.text, "axis");
  }
  for (const OutsideEvent& event : timeline_.outside) {
    const double x = kLeft + scale_.At(event.time);
    back_.Line(x, kAxisHeight, x, top_, "moment");
  }
}

}  // namespace palsim
