// The timeline in the Chrome trace event format, for viewers such as Perfetto.
#ifndef TOOLS_PALSIM_TIMELINE_TRACE_EVENTS_H_
#define TOOLS_PALSIM_TIMELINE_TRACE_EVENTS_H_

#include <string>

#include "tools/palsim/timeline/timeline.h"

namespace palsim {

// JSON. A process has its calls in its threads; the device has threads for each mutex with who
// holds it and who waits, for the sounds, the vibrator and each LED, and the levels as counters.
// Everything else in the journal is an instant.
[[nodiscard]] std::string TraceEventsJson(const Timeline& timeline);

}  // namespace palsim

#endif  // TOOLS_PALSIM_TIMELINE_TRACE_EVENTS_H_
