// A trace line as one would write it by hand: formatting and the call of the event log.
#ifndef BENCH_BARE_TRACE_H_
#define BENCH_BARE_TRACE_H_

#include "platform/sim/device.h"

namespace bench {

// An event log that keeps nothing: what is measured is the way there.
[[nodiscard]] sim::Module QuietEventLog();

void BareTrace(const char* format, ...);

}  // namespace bench

#endif  // BENCH_BARE_TRACE_H_
