// The trace source of the power family.
#ifndef POWER_POWER_TRACE_H_
#define POWER_POWER_TRACE_H_

#include "frame/trace.h"

namespace pal {

inline constexpr TraceSource kPowerTrace{Facility::kPower};

}  // namespace pal

#endif  // POWER_POWER_TRACE_H_
