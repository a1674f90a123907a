// The chart of a timeline: an axis with a lane for each thing that has a state over time.
#ifndef TOOLS_PALSIM_TIMELINE_CHART_H_
#define TOOLS_PALSIM_TIMELINE_CHART_H_

#include <string>

#include "tools/palsim/timeline/timeline.h"

namespace palsim {

// The CSS class of a process in the page: p0, p1, ...; after the last one p0 again.
[[nodiscard]] std::string ProcessColour(const Timeline& timeline, std::uint32_t process);

// HTML: the lanes' names stay beside a box in which the lanes scroll, and the axis above it.
[[nodiscard]] std::string ChartHtml(const Timeline& timeline);
// The same as one SVG element, with what `head` has before the lanes.
[[nodiscard]] std::string ChartPicture(const Timeline& timeline, std::string_view head);

}  // namespace palsim

#endif  // TOOLS_PALSIM_TIMELINE_CHART_H_
