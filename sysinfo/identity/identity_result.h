// The result codes of the identity queries beside the general ones.
#ifndef SYSINFO_IDENTITY_IDENTITY_RESULT_H_
#define SYSINFO_IDENTITY_IDENTITY_RESULT_H_

#include "frame/result.h"

namespace pal {

// The sources' own, older than the scheme of the others.
inline constexpr HRESULT kSourceFailed = -1;
inline constexpr HRESULT kSourceTooLong = -8;

}  // namespace pal

#endif  // SYSINFO_IDENTITY_IDENTITY_RESULT_H_
