#include "tools/palsim/timeline/page.h"

#include <fmt/format.h>

#include "tools/palsim/names.h"
#include "tools/palsim/scenario/values.h"
#include "tools/palsim/timeline/chart.h"
#include "tools/palsim/timeline/svg.h"
#include "tools/palsim/timeline/text.h"

namespace palsim {
namespace {

constexpr std::string_view kStyle = R"(
:root {
  color-scheme: light dark;
  --page: #f5f6f8; --card: #ffffff; --ink: #18202b; --muted: #556170; --rule: #e3e7ec;
  --tick: #eef1f4; --gap: #d5dae1; --in: #ffffff; --moment: #b3261e;
  --p0: #2f67d8; --p1: #b5500a; --p2: #1b7a46; --p3: #7a45c4; --p4: #b82a6b; --p5: #0d7482;
  --sound: #3b4a5f; --vibration: #8a6100; --led: #ffb300; --led-ink: #2b1d00;
  --volume: #2f67d8; --gain: #1b7a46;
}
@media (prefers-color-scheme: dark) {
  :root {
    --page: #12161c; --card: #1a2028; --ink: #e8ecf1; --muted: #a0abb9; --rule: #2c3540;
    --tick: #242c36; --gap: #3a4552; --in: #10151b; --moment: #ff8a80;
    --p0: #86b1ff; --p1: #ffb077; --p2: #74d79f; --p3: #c6a8ff; --p4: #ff9ac6; --p5: #6bd3e0;
    --sound: #c3cfde; --vibration: #f0c65a; --led: #ffca40; --led-ink: #221700;
    --volume: #86b1ff; --gain: #74d79f;
  }
}
* { box-sizing: border-box; }
body { margin: 0; background: var(--page); color: var(--ink);
  font: 15px/1.5 system-ui, "Segoe UI", Roboto, "DejaVu Sans", sans-serif; }
main { max-width: 1320px; margin: 0 auto; padding: 28px 20px 60px; }
h1 { font-size: 26px; line-height: 1.25; margin: 0 0 6px; }
h2 { font-size: 18px; margin: 32px 0 10px; }
p { margin: 0 0 8px; max-width: 75ch; }
.device, .facts { color: var(--muted); }
.chart { position: relative; display: flex; background: var(--card); border: 1px solid var(--rule);
  border-radius: 10px; overflow: hidden; margin-top: 18px; }
.names { position: relative; flex: 0 0 150px; border-right: 1px solid var(--rule); }
.name { position: absolute; left: 0; right: 0; padding: 5px 8px 0 12px;
  border-top: 1px solid var(--rule); line-height: 1.2; overflow: hidden; }
.name b, .name small { display: block; overflow: hidden; text-overflow: ellipsis;
  white-space: nowrap; }
.name b { font-size: 13px; font-weight: 600; }
.name small { font-size: 10.5px; color: var(--muted); }
.scroll { flex: 1 1 auto; overflow-x: auto; min-width: 0; }
.scroll:focus-visible { outline: 2px solid var(--p0); outline-offset: -2px; }
.stack { position: relative; width: max-content; }
svg { display: block; }
svg.back { position: absolute; left: 0; top: 0; }
svg.plot { position: relative; }
text { font: 12px system-ui, "Segoe UI", Roboto, "DejaVu Sans", sans-serif; fill: var(--ink); }
.rule { stroke: var(--rule); }
.tick { stroke: var(--tick); }
.moment { stroke: var(--moment); stroke-dasharray: 3 4; opacity: .55; }
.gap { fill: url(#break); opacity: .8; }
text.out, text.level { paint-order: stroke; stroke: var(--card); stroke-width: 4px;
  stroke-linejoin: round; }
text.axis { font-size: 11px; fill: var(--muted); }
text.gaptext { text-anchor: middle; font-weight: 600; }
.life { stroke-width: 2; opacity: .55; }
.p0 { --own: var(--p0); } .p1 { --own: var(--p1); } .p2 { --own: var(--p2); }
.p3 { --own: var(--p3); } .p4 { --own: var(--p4); } .p5 { --own: var(--p5); }
.sound { --own: var(--sound); } .vibration { --own: var(--vibration); }
.led { --own: var(--led); } .outside { --own: var(--moment); }
.volume { --own: var(--volume); } .gain { --own: var(--gain); }
.bar { fill: var(--own); }
.life { stroke: var(--own); }
.bar.wait { fill: var(--card); stroke: var(--own); stroke-width: 1.5; stroke-dasharray: 4 3; }
text.in { fill: var(--in); }
text.in.wait { fill: var(--ink); }
text.in.led { fill: var(--led-ink); }
.bar.blinks { fill: url(#blink); stroke: var(--led); }
text.in.blinks { fill: var(--ink); }
.bar:hover { filter: brightness(1.12); }
.killed { stroke: var(--moment); stroke-width: 4; }
.curve { fill: none; stroke: var(--own); stroke-width: 2; }
.area { fill: var(--own); opacity: .16; pointer-events: none; }
.curve, .base { pointer-events: none; }
.base { stroke: var(--rule); }
.hit { fill: transparent; }
text.level { font-size: 11px; pointer-events: none; }
.table { overflow-x: auto; background: var(--card); border: 1px solid var(--rule);
  border-radius: 10px; }
table { border-collapse: collapse; width: 100%; font-size: 13.5px; }
th, td { text-align: left; vertical-align: top; padding: 4px 12px; }
th { color: var(--muted); font-weight: 600; border-bottom: 1px solid var(--rule); }
tr + tr td { border-top: 1px solid var(--rule); }
td.time { text-align: right; white-space: nowrap; font-variant-numeric: tabular-nums; }
td.who { white-space: nowrap; }
td.who i { display: inline-block; width: 9px; height: 9px; border-radius: 2px; margin-right: 7px;
  background: var(--own, var(--gap)); }
td.what { overflow-wrap: anywhere; min-width: 260px; width: 66%; }
th:first-child { text-align: right; }
td.kind { color: var(--muted); }
details { color: var(--muted); }
summary { cursor: pointer; }
details div { font: 12px/1.5 ui-monospace, "DejaVu Sans Mono", monospace; overflow-wrap: anywhere; }
@media (max-width: 600px) {
  main { padding: 18px 12px 40px; }
  h1 { font-size: 21px; }
  .names { flex-basis: 112px; }
  .name { padding-left: 8px; padding-right: 4px; }
  .name b { font-size: 11.5px; }
  th, td { padding: 4px 8px; }
  td.what { min-width: 0; }
  th:nth-child(3), td.kind { display: none; }
}
)";

constexpr std::string_view kPatterns =
    "<svg width=\"0\" height=\"0\" style=\"position:absolute\" aria-hidden=\"true\"><defs>"
    "<pattern id=\"break\" width=\"8\" height=\"8\" patternUnits=\"userSpaceOnUse\" "
    "patternTransform=\"rotate(45)\"><line x1=\"0\" y1=\"0\" x2=\"0\" y2=\"8\" "
    "style=\"stroke:var(--gap);stroke-width:3\"/></pattern>"
    "<pattern id=\"blink\" width=\"12\" height=\"12\" patternUnits=\"userSpaceOnUse\">"
    "<rect width=\"6\" height=\"12\" style=\"fill:var(--led)\"/></pattern></defs></svg>\n";

std::string Paragraph(std::string_view classes, std::string_view text) {
  return text.empty() ? std::string()
                      : fmt::format("<p class=\"{}\">{}</p>\n", classes, EscapeHtml(text));
}

std::string EntryRow(const Timeline& timeline, const sim::JournalEntry& entry) {
  const std::string name = timeline.ProcessName(entry.process_id);
  std::string colour;
  for (std::size_t index = 0; index < timeline.processes.size(); ++index) {
    if (timeline.processes[index].process == entry.process_id) {
      colour = fmt::format("p{}", index % kProcessColours);
    }
  }
  return fmt::format(
      "<tr><td class=\"time\">{}</td><td class=\"who {}\"><i></i>{}</td><td class=\"kind\">{}</td>"
      "<td class=\"what\">{}</td></tr>\n",
      MomentText(entry.time_ms), colour, EscapeHtml(name), sim::EffectName(entry.effect),
      EscapeHtml(ReadableText(entry)));
}

std::string FoldedRow(const std::vector<const sim::JournalEntry*>& lines) {
  if (lines.empty()) return {};
  std::string folded;
  for (const sim::JournalEntry* line : lines) {
    folded += fmt::format("<div>{} {}: {}</div>\n", MomentText(line->time_ms),
                          CategoryText(line->category), EscapeHtml(line->text));
  }
  return fmt::format(
      "<tr><td class=\"time\">{}</td><td></td><td class=\"kind\">trace</td><td class=\"what\">"
      "<details><summary>{} line{} in the event log</summary>\n{}</details></td></tr>\n",
      MomentText(lines.front()->time_ms), lines.size(), lines.size() == 1 ? "" : "s", folded);
}

std::string Table(const Timeline& timeline) {
  std::string rows;
  std::vector<const sim::JournalEntry*> folded;
  for (const sim::JournalEntry& entry : timeline.run.entries) {
    if (entry.effect == sim::Effect::kTrace) {
      folded.push_back(&entry);
      continue;
    }
    rows += FoldedRow(folded) + EntryRow(timeline, entry);
    folded.clear();
  }
  rows += FoldedRow(folded);
  return "<div class=\"table\"><table><thead><tr><th>time</th><th>process</th><th>effect</th>"
         "<th>what</th></tr></thead><tbody>\n" +
         rows + "</tbody></table></div>\n";
}

}  // namespace

std::string TimelinePage(const Timeline& timeline) {
  std::string page = fmt::format(
      "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<title>{0}</title>\n<style>{1}</style></head>\n<body><main>\n{2}<h1>{0}</h1>\n",
      EscapeHtml(timeline.run.title), kStyle, kPatterns);
  for (const std::string& about : timeline.run.about) page += Paragraph("about", about);
  page += Paragraph("device", "Played on a simulated " + timeline.run.device);
  page += Chart(timeline).Html();
  page += "<h2>The journal</h2>\n" + Table(timeline) + "</main></body></html>\n";
  return page;
}

}  // namespace palsim
