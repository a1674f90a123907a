// The timeline as a page for a browser: one file, nothing from elsewhere.
#ifndef TOOLS_PALSIM_TIMELINE_PAGE_H_
#define TOOLS_PALSIM_TIMELINE_PAGE_H_

#include <string>

#include "tools/palsim/timeline/timeline.h"

namespace palsim {

[[nodiscard]] std::string TimelinePage(const Timeline& timeline);
// The chart of the page alone, as a picture: an SVG file.
[[nodiscard]] std::string TimelinePicture(const Timeline& timeline);

}  // namespace palsim

#endif  // TOOLS_PALSIM_TIMELINE_PAGE_H_
