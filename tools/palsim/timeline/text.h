// The timeline for a terminal.
#ifndef TOOLS_PALSIM_TIMELINE_TEXT_H_
#define TOOLS_PALSIM_TIMELINE_TEXT_H_

#include <string>

#include "tools/palsim/timeline/timeline.h"

namespace palsim {

// A chart of a line for each lane, then everything in order, without what is for the event log. It
// is as wide as a terminal with so many columns; 0: there is none.
[[nodiscard]] std::string TimelineText(const Timeline& timeline, std::size_t columns = 0);

// What a journal line says to a reader: "calls PALBEEPKeyClick()", "volume 80 % (0xCCCCCCCC)".
[[nodiscard]] std::string ReadableText(const sim::JournalEntry& entry);

}  // namespace palsim

#endif  // TOOLS_PALSIM_TIMELINE_TEXT_H_
