// What the other families ask about how the device was built and what its owner allows, beside the
// exports of include/palmfgopt.h.
#ifndef SYSINFO_OPTIONS_MANUFACTURING_OPTIONS_H_
#define SYSINFO_OPTIONS_MANUFACTURING_OPTIONS_H_

#include "frame/facility.h"
#include "include/palmfgopt.h"
#include "platform/wince.h"

namespace pal {

// The two answers of PALMFGOpt_IsDisabledByPolicy; its failures are negative.
inline constexpr HRESULT kPolicyEnabled = PAL_MFGOPT_S_ENABLED;
inline constexpr HRESULT kPolicyDisabled = PAL_MFGOPT_S_DISABLED;

// Under HKEY_LOCAL_MACHINE: a key for each feature, and the owner's switches.
inline constexpr const WCHAR* kPolicyPath = TEXT("Software\\Dravonel\\Policy");

// The four bytes of the AIT parameter: not 0 where image capture is not available. 0 also where the
// parameter cannot be read, after a line on the debug output.
[[nodiscard]] DWORD IsAITConfig();

}  // namespace pal

#endif  // SYSINFO_OPTIONS_MANUFACTURING_OPTIONS_H_
