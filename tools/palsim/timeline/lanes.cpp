#include "tools/palsim/timeline/lanes.h"

#include <fmt/format.h>

#include <algorithm>

#include "tools/palsim/scenario/values.h"

namespace palsim {
namespace {

constexpr ScaleSizes kChartSizes{.width = 880, .least_interval = 10, .gap = 68};
constexpr double kLeft = 58;  // before the axis begins: the levels before the run
constexpr double kMargin = 8;
constexpr double kAxisHeight = 32;
constexpr double kRestartHeight = 18;  // more, for a line of texts above the axis
constexpr double kRowHeight = 26;
constexpr double kLeastLane = 40;
constexpr double kLanePadding = 5;
constexpr double kBarHeight = 18;
constexpr double kLeastBar = 4;
constexpr double kLevelHeight = 62;
constexpr double kTextGap = 6;
constexpr std::size_t kMostRows = 8;
constexpr double kNames = 150;  // beside the lanes of a picture

double LevelY(std::uint32_t value, double most) {
  constexpr double kRoomAbove = 18;
  constexpr double kRoomBelow = 4;
  const double part = static_cast<double>(value) / most;
  return kLevelHeight - kRoomBelow - (kLevelHeight - kRoomBelow - kRoomAbove) * part;
}

}  // namespace

std::string SpanTitle(std::string_view what, std::uint64_t begin, std::uint64_t end) {
  return fmt::format("{}\n{} to {}: {}", what, MomentText(begin), MomentText(end),
                     TimeText(end - begin));
}

Lanes::Lanes(const Timeline& timeline)
    : timeline_(timeline), scale_(MomentsOf(timeline), kChartSizes), width_(0) {
  Reach(X(timeline.length_ms) + kMargin);
  AddAxis();
  AddRestarts();
}

double Lanes::X(std::uint64_t time_ms) const {
  return kLeft + scale_.At(time_ms);
}

void Lanes::BeginPart(const std::string& title) {
  parts_.push_back({title, {}});
}

Lanes::Placed Lanes::Measure(const Bar& bar) const {
  Placed placed{};
  placed.from = X(bar.begin);
  const double end = std::max(placed.from + kLeastBar, X(bar.end));
  const double text = TextWidth(bar.text);
  const bool inside = text + 2 * kTextGap <= end - placed.from;
  placed.text_at = inside ? placed.from + kTextGap : end + kTextGap;
  placed.to = inside ? end - kTextGap : placed.text_at + text;  // the next bar may touch it
  placed.has_text = !bar.text.empty();
  return placed;
}

// Each bar with its text in the first row where there is room for both. Where there is none, it
// stands in one more row, without its text, which still shows under the pointer.
std::vector<Lanes::Placed> Lanes::Place(const std::vector<Bar>& bars) {
  std::vector<double> row_ends;
  std::vector<Placed> all;
  for (const Bar& bar : bars) {
    Placed placed = Measure(bar);
    const auto row = std::ranges::find_if(
        row_ends, [&](double end) { return end + kTextGap <= placed.from + 0.01; });
    placed.row = static_cast<std::size_t>(row - row_ends.begin());
    if (placed.row >= kMostRows) {
      placed.row = kMostRows;
      placed.has_text = false;
    } else if (row == row_ends.end()) {
      row_ends.push_back(placed.to);
    } else {
      *row = placed.to;
    }
    if (placed.has_text) Reach(placed.to + kMargin);
    all.push_back(placed);
  }
  return all;
}

void Lanes::DrawBar(Svg& plot, const Bar& bar, const Placed& placed, bool has_plate) const {
  const double y =
      kLanePadding + static_cast<double>(placed.row) * kRowHeight + (kRowHeight - kBarHeight) / 2;
  const double end = std::max(placed.from + kLeastBar, X(bar.end));
  if (!bar.link.empty()) plot.BeginLink(bar.link, bar.id);
  plot.Rectangle(placed.from, y, end - placed.from, kBarHeight, "bar " + bar.classes, bar.title);
  if (placed.has_text) {
    const bool inside = placed.text_at < end;
    if (!inside && has_plate) {
      plot.Rectangle(end + 1, y, TextWidth(bar.text) + kTextGap, kBarHeight, "plate");
    }
    plot.Text(placed.text_at, y + kBarHeight - 5, bar.text, (inside ? "in " : "out ") + bar.classes,
              bar.title);
  }
  if (!bar.link.empty()) plot.EndLink();
}

void Lanes::DrawLife(Svg& plot, const Lifeline& life) const {
  const double y = kLanePadding + kRowHeight / 2;
  const double from = X(life.begin);
  plot.Line(from, y, std::max(from + 2, X(life.end)), y, "life " + life.classes);
}

void Lanes::DrawKilled(Svg& plot, const Lifeline& life) const {
  const double y = kLanePadding + kRowHeight / 2;
  const double x = X(life.end);
  plot.Line(x, y - kRowHeight / 2, x, y + kRowHeight / 2, "killed");
}

void Lanes::AddBars(const std::string& name, const std::string& kind, const std::vector<Bar>& bars,
                    const Lifeline* life) {
  const std::vector<Placed> placed = Place(bars);
  std::size_t rows = 1;
  for (const Placed& place : placed) rows = std::max(rows, place.row + 1);
  const double height = static_cast<double>(rows) * kRowHeight + 2 * kLanePadding;
  Lane lane{name, kind, std::max(kLeastLane, height)};
  if (life != nullptr) DrawLife(lane.plot, *life);
  for (std::size_t index = 0; index < bars.size(); ++index) {
    DrawBar(lane.plot, bars[index], placed[index], life != nullptr);
  }
  if (life != nullptr && life->killed) DrawKilled(lane.plot, *life);
  parts_.back().lanes.push_back(std::move(lane));
}

void Lanes::AddSteps(const std::string& name, const std::string& kind,
                     const std::vector<Level>& levels, double most, const std::string& classes,
                     std::string (*text)(std::uint32_t value)) {
  Lane lane{name, kind, kLevelHeight};
  DrawLevelTexts(lane, levels, most, text);
  const double bottom = kLevelHeight - 4;
  const double last = X(timeline_.length_ms);
  std::string line;
  for (const Level& level : levels) {
    const double y = LevelY(level.value, most);
    line += line.empty() ? fmt::format("M{:.1f} {:.1f}H{:.1f}", kMargin, y, X(level.time))
                         : fmt::format("H{:.1f}V{:.1f}", X(level.time), y);
  }
  line += fmt::format("H{:.1f}", last);
  lane.plot.Path(fmt::format("{}V{:.1f}H{:.1f}Z", line, bottom, kMargin), classes + " area");
  lane.plot.Path(line, classes + " curve");
  lane.plot.Line(kMargin, bottom, last, bottom, "base");
  parts_.back().lanes.push_back(std::move(lane));
}

void Lanes::DrawLevelTexts(Lane& lane, const std::vector<Level>& levels, double most,
                           std::string (*text)(std::uint32_t value)) {
  lane.plot.Text(kMargin, LevelY(levels[0].value, most) - 5, text(levels[0].value), "level",
                 "before the run");
  const double last = X(timeline_.length_ms);
  double label_end = kMargin;
  std::string passing;  // levels that lasted no time
  for (std::size_t index = 0; index < levels.size(); ++index) {
    const Level& level = levels[index];
    const bool is_last = index + 1 == levels.size();
    const std::uint64_t until = is_last ? timeline_.length_ms : levels[index + 1].time;
    const double x = X(level.time);
    const std::string label = passing + text(level.value);
    lane.plot.Rectangle(x, 0, std::max(kLeastBar, X(until) - x), lane.height, "hit",
                        SpanTitle(label, level.time, until));
    const bool changes = index > 0 && levels[index - 1].value != level.value;
    passing = changes && until == level.time ? label + ", " : "";
    const bool runs_into_last = x + 3 + TextWidth(label) > last;
    if (!changes || !passing.empty() || x + 3 < label_end || runs_into_last) continue;
    lane.plot.Text(x + 3, LevelY(level.value, most) - 5, label, "level");
    label_end = x + 3 + TextWidth(label) + kTextGap;
  }
  const std::string after = text(levels.back().value);
  lane.plot.Text(last + kTextGap, LevelY(levels.back().value, most) + 4, after, "level",
                 "after the run");
  Reach(last + kTextGap + TextWidth(after) + kMargin);
}

void Lanes::AddAxis() {
  axis_.name = "time";
  axis_.height = kAxisHeight + (timeline_.restarts.empty() ? 0 : kRestartHeight);
  const double text_y = axis_.height - 10;
  for (const TimeScale::Interval& interval : scale_.intervals()) {
    if (!interval.cut) continue;
    const double width = interval.to - interval.from - 6;
    const double from = kLeft + interval.from + 3;
    back_.Rectangle(from, 0, width, 1, "gap");
    const std::string text = TimeText(interval.end - interval.begin);
    axis_.plot.Text(from + width / 2, text_y, text, "axis gaptext",
                    fmt::format("{} in which nothing changes", text));
  }
  for (const TimeScale::Tick& tick : scale_.Ticks(TextWidth("0"))) {
    const double x = kLeft + tick.at;
    back_.Rectangle(x, 0, 1, 1, "tick");
    axis_.plot.Line(x, text_y - 12, x, axis_.height, "rule");
    axis_.plot.Text(x + 4, text_y, tick.text, "axis");
    Reach(x + 4 + TextWidth(tick.text) + kMargin);
  }
  for (const OutsideEvent& event : timeline_.outside) {
    back_.Rectangle(X(event.time), 0, 1, 1, "moment");
  }
}

void Lanes::AddRestarts() {
  double free = 0;
  for (const OutsideEvent& restart : timeline_.restarts) {
    const double x = X(restart.time);
    const std::string title = fmt::format("{} at {}", restart.text, MomentText(restart.time));
    back_.Rectangle(x - 2, 0, 4, 1, "restart");
    axis_.plot.Rectangle(x - 2, 2, 4, axis_.height - 2, "restart", title);
    if (x < free) continue;
    axis_.plot.Text(x + kTextGap, 14, "⟳ " + restart.text, "restart", title);
    free = x + kTextGap + TextWidth(restart.text) + 20;
    Reach(free);
  }
}

std::string Lanes::LaneHtml(const Lane& lane, std::string_view classes) const {
  return fmt::format(
      "<div class=\"{}\"><div class=\"name\" title=\"{}\"><b>{}</b><small>{}</small></div>\n"
      "{}</div>\n",
      classes, EscapeHtml(lane.name), EscapeHtml(lane.name), EscapeHtml(lane.kind),
      lane.plot.Element(width_, lane.height, "plot", lane.name + " " + lane.kind));
}

std::string Lanes::PartHtml(const Part& part) const {
  if (part.lanes.empty()) return {};
  std::string lanes;
  for (const Lane& lane : part.lanes) lanes += LaneHtml(lane, "lane");
  return fmt::format("<details open><summary>{}</summary>\n{}</details>\n", part.title, lanes);
}

std::string Lanes::Html() const {
  std::string parts;
  for (const Part& part : parts_) parts += PartHtml(part);
  return fmt::format(
      "<div class=\"chart\" tabindex=\"0\" role=\"region\" aria-label=\"What went on at which "
      "time\"><div class=\"sheet\">\n{}{}{}</div></div>\n",
      back_.Backdrop(width_, "back"), LaneHtml(axis_, "lane axis"), parts);
}

std::string Lanes::LanePicture(const Lane& lane, double y) const {
  Svg name;
  name.Text(12, 18, lane.name, "lane-name");
  name.Text(12, 32, lane.kind, "lane-kind");
  return fmt::format(
      "<g transform=\"translate(0 {})\">\n{}</g>\n<g transform=\"translate({} {})\">\n{}</g>\n", y,
      name.Element(kNames - 4, lane.height, "names", lane.name), kNames, y,
      lane.plot.Element(width_, lane.height, "plot", lane.name + " " + lane.kind));
}

std::string Lanes::Picture(std::string_view head) const {
  std::string lanes = LanePicture(axis_, 0);
  double y = axis_.height;
  Svg rules;
  for (const Part& part : parts_) {
    for (const Lane& lane : part.lanes) {
      rules.Line(0, y, kNames + width_, y, "rule");
      lanes += LanePicture(lane, y);
      y += lane.height;
    }
  }
  rules.Line(kNames, 0, kNames, y, "rule");
  return fmt::format(
      "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 {0:.0f} {1:.0f}\" width=\"{0:.0f}\" "
      "height=\"{1:.0f}\">\n{2}<rect class=\"plate\" width=\"{0:.0f}\" height=\"{1:.0f}\" rx=\"10\"/>\n"
      "<g transform=\"translate({3} 0)\">\n{4}</g>\n{5}{6}</svg>\n",
      kNames + width_, y, head, kNames, back_.Backdrop(width_, "back"),
      rules.Element(kNames + width_, y, "rules", "lanes"), lanes);
}

}  // namespace palsim
