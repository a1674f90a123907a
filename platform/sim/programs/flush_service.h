// The service that owns the flush of the registry.
#ifndef PLATFORM_SIM_PROGRAMS_FLUSH_SERVICE_H_
#define PLATFORM_SIM_PROGRAMS_FLUSH_SERVICE_H_

#include "platform/sim/device.h"

namespace sim {

// Holds the event "DVLRegFlushKeyAll" and flushes the four roots each time it is set, for as long
// as the device runs. To be started with Device::StartProgram.
[[nodiscard]] Program FlushService();

}  // namespace sim

#endif  // PLATFORM_SIM_PROGRAMS_FLUSH_SERVICE_H_
