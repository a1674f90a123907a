// The timeline as a page for a browser: one file, nothing from elsewhere.
#ifndef TOOLS_PALSIM_TIMELINE_PAGE_H_
#define TOOLS_PALSIM_TIMELINE_PAGE_H_

#include <string>

#include "tools/palsim/timeline/timeline.h"

namespace palsim {

[[nodiscard]] std::string TimelinePage(const Timeline& timeline);

}  // namespace palsim

#endif  // TOOLS_PALSIM_TIMELINE_PAGE_H_
