// The trace source of the device-information family.
#ifndef SYSINFO_IDENTITY_IDENTITY_TRACE_H_
#define SYSINFO_IDENTITY_IDENTITY_TRACE_H_

#include "frame/trace.h"

namespace pal {

inline constexpr TraceSource kIdentityTrace{Facility::kDeviceInformation};

}  // namespace pal

#endif  // SYSINFO_IDENTITY_IDENTITY_TRACE_H_
