// The result codes of the identity queries beside the general ones.
#ifndef SYSINFO_IDENTITY_IDENTITY_RESULT_H_
#define SYSINFO_IDENTITY_IDENTITY_RESULT_H_

#include "frame/result.h"

namespace pal {

// The sources' own, older than the scheme of the others.
inline constexpr HRESULT kSourceFailed = PAL_SYSINFO_E_SOURCE_FAILED;
inline constexpr HRESULT kSourceTooLong = PAL_SYSINFO_E_SOURCE_TOO_LONG;

}  // namespace pal

#endif  // SYSINFO_IDENTITY_IDENTITY_RESULT_H_
