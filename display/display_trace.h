// The trace source of the display family.
#ifndef DISPLAY_DISPLAY_TRACE_H_
#define DISPLAY_DISPLAY_TRACE_H_

#include "frame/trace.h"

namespace pal {

inline constexpr TraceSource kDisplayTrace{Facility::kDisplay};

}  // namespace pal

#endif  // DISPLAY_DISPLAY_TRACE_H_
