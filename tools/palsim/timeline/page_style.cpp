#include "tools/palsim/timeline/page_style.h"

namespace palsim {

const std::string_view kPageStyle = R"(
:root {
  color-scheme: light dark;
  --page: #f5f6f8; --card: #ffffff; --ink: #18202b; --muted: #556170; --rule: #e3e7ec;
  --tick: #eef1f4; --gap: #d5dae1; --in: #ffffff; --moment: #b3261e; --held: #1b7a46; --restart: #7a45c4;
  --p0: #2f67d8; --p1: #b5500a; --p2: #1b7a46; --p3: #7a45c4; --p4: #b82a6b; --p5: #0d7482;
  --sound: #3b4a5f; --vibration: #8a6100; --led: #ffb300; --led-ink: #2b1d00;
  --volume: #2f67d8; --gain: #1b7a46;
}
@media (prefers-color-scheme: dark) {
  :root {
    --page: #12161c; --card: #1a2028; --ink: #e8ecf1; --muted: #a0abb9; --rule: #2c3540;
    --tick: #242c36; --gap: #3a4552; --in: #10151b; --moment: #ff8a80; --held: #74d79f; --restart: #c6a8ff;
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
.chart { --names: 150px; background: var(--card); border: 1px solid var(--rule);
  border-radius: 10px; overflow: auto; max-height: calc(100vh - 16px); margin-top: 18px; }
.chart:focus-visible { outline: 2px solid var(--p0); outline-offset: -2px; }
.sheet { position: relative; width: max-content; min-width: 100%; }
.lane { position: relative; display: flex; border-top: 1px solid var(--rule); }
.axis { position: sticky; top: 0; z-index: 3; background: var(--card); border-top: 0;
  border-bottom: 1px solid var(--rule); }
.name { position: sticky; left: 0; z-index: 2; flex: 0 0 var(--names); padding: 5px 8px 0 12px;
  background: var(--card); border-right: 1px solid var(--rule); line-height: 1.2;
  overflow: hidden; }
.axis .name { color: var(--muted); }
.name b, .name small { display: block; overflow: hidden; text-overflow: ellipsis;
  white-space: nowrap; }
.name b { font-size: 13px; font-weight: 600; }
.name small { font-size: 10.5px; color: var(--muted); }
.sheet summary { position: sticky; left: 0; z-index: 1; width: max-content; padding: 2px 12px;
  font-size: 12px; color: var(--muted); }
.sheet details { position: relative; border-top: 1px solid var(--rule); }
text.lane-name { font-size: 13px; font-weight: 600; }
text.lane-kind { font-size: 10.5px; fill: var(--muted); }
svg { display: block; }
svg.back { position: absolute; left: var(--names); top: 0; height: 100%; }
svg.back rect { height: 100%; }
svg.plot { position: relative; flex: none; }
text { font: 12px system-ui, "Segoe UI", Roboto, "DejaVu Sans", sans-serif; fill: var(--ink); }
.rule { stroke: var(--rule); }
.tick { fill: var(--tick); }
.moment { fill: var(--moment); opacity: .4; }
.restart { fill: var(--restart); }
svg.back .restart { opacity: .5; }
text.restart { fill: var(--ink); font-weight: 600; }
.plate { fill: var(--card); }
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
.bar.failed { fill: url(#failed); stroke: var(--moment); stroke-width: 2; }
text.failed { fill: var(--moment); font-weight: 600; paint-order: stroke; stroke: var(--card);
  stroke-width: 4px; }
.bar.unfinished { fill: var(--card); stroke: var(--own); stroke-width: 2; }
text.in.unfinished { fill: var(--ink); }
.bar.held { fill: var(--held); }
a:focus .bar, a:hover .bar { stroke: var(--ink); stroke-width: 2; }
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
.verdict { font-weight: 600; }
.verdict.failed, td.failed, li.failed { color: var(--moment); }
.expected { padding-left: 20px; overflow-wrap: anywhere; }
.expected a, td.time a { color: inherit; }
:target { background: var(--tick); outline: 2px solid var(--p0); scroll-margin: 60px 200px; }
a:target .bar { stroke: var(--p0); stroke-width: 4; }
.table { overflow-x: clip; background: var(--card); border: 1px solid var(--rule);
  border-radius: 10px; }
table { border-collapse: collapse; width: 100%; font-size: 13.5px; }
th, td { text-align: left; vertical-align: top; padding: 4px 12px; }
th { position: sticky; top: 0; background: var(--card); color: var(--muted); font-weight: 600;
  border-bottom: 1px solid var(--rule); }
tr + tr td { border-top: 1px solid var(--rule); }
td.time { text-align: right; white-space: nowrap; font-variant-numeric: tabular-nums; }
td.who { white-space: nowrap; }
td.who i { display: inline-block; width: 9px; height: 9px; border-radius: 2px; margin-right: 7px;
  background: var(--own, var(--gap)); }
td.what { overflow-wrap: anywhere; min-width: 260px; width: 66%; }
th:first-child { text-align: right; }
td.kind { color: var(--muted); }
td details { color: var(--muted); }
summary { cursor: pointer; }
summary h2 { display: inline-block; }
td details div { font: 12px/1.5 ui-monospace, "DejaVu Sans Mono", monospace; overflow-wrap: anywhere; }
@media (max-width: 600px) {
  main { padding: 18px 12px 40px; }
  h1 { font-size: 21px; }
  .chart { --names: 112px; }
  .name { padding-left: 8px; padding-right: 4px; }
  .name b { font-size: 11.5px; }
  th, td { padding: 4px 8px; }
  td.what { min-width: 0; }
  th:nth-child(3), td.kind { display: none; }
}
@media print { .chart { max-height: none; } }
)";

const std::string_view kPagePatterns =
    "<svg width=\"0\" height=\"0\" style=\"position:absolute\" aria-hidden=\"true\"><defs>"
    "<pattern id=\"break\" width=\"8\" height=\"8\" patternUnits=\"userSpaceOnUse\" "
    "patternTransform=\"rotate(45)\"><line x1=\"0\" y1=\"0\" x2=\"0\" y2=\"8\" "
    "style=\"stroke:var(--gap);stroke-width:3\"/></pattern>"
    "<pattern id=\"blink\" width=\"12\" height=\"12\" patternUnits=\"userSpaceOnUse\">"
    "<rect width=\"6\" height=\"12\" style=\"fill:var(--led)\"/></pattern>"
    "<pattern id=\"failed\" width=\"8\" height=\"8\" patternUnits=\"userSpaceOnUse\" "
    "patternTransform=\"rotate(45)\"><rect width=\"8\" height=\"8\" "
    "style=\"fill:var(--card)\"/><line x1=\"0\" y1=\"0\" x2=\"0\" y2=\"8\" "
    "style=\"stroke:var(--moment);stroke-width:5\"/></pattern></defs></svg>\n";

}  // namespace palsim
