// What the other families take from this one beside its exports. They include nothing else of it.
#ifndef SYSINFO_INTERNAL_H_
#define SYSINFO_INTERNAL_H_

#include <algorithm>
#include <span>

#include "platform/wince.h"
#include "sysinfo/options/device_names.h"

namespace pal {

// Reads the model name, parameter 0x00D5. `length`: in, the size of `buffer` in bytes; out, the
// length of the name with its terminator.
//
// S_OK    done
// E_FAIL  a null argument; the parameter cannot be read or has no bytes; the name does not fit.
//         Traced; buffer and length are unchanged.
HRESULT PalGetModel(char* buffer, DWORD* length);

// Reads one of the device's non-volatile parameters, which are written at the factory. `request`
// begins with the parameter's 16-bit id, low byte first; some parameters want more bytes behind it.
// A parameter may have fewer bytes than `answer`: the rest of `answer` is unchanged.
// `bytes_returned` is the number of bytes that the kernel wrote, at most answer.size(), and 0 where
// the read fails.
//
// False where the read fails; the last error is then that of the call.
[[nodiscard]] inline bool PalReadNvParm(std::span<const BYTE> request, std::span<BYTE> answer,
                                        DWORD& bytes_returned) {
  constexpr DWORD kReadParameter = 0x010122C4;
  bytes_returned = 0;
  const auto answer_bytes = static_cast<DWORD>(answer.size());
  DWORD returned = 0;
  // The kernel only reads the request, though the call takes it without const.
  if (KernelIoControl(kReadParameter, const_cast<BYTE*>(request.data()),
                      static_cast<DWORD>(request.size()), answer.data(), answer_bytes,
                      &returned) == FALSE) {
    return false;
  }
  bytes_returned = std::min(returned, answer_bytes);
  return true;
}

// Reads the AIT parameter, four bytes. Image capture is not available where it is not 0. 0 also
// where the parameter cannot be read; this writes a line to the debug output.
[[nodiscard]] DWORD IsAITConfig();

// The key of the owner's policies, under HKEY_LOCAL_MACHINE: switches, and a subkey for each
// feature.
inline constexpr const WCHAR* kPolicyPath = TEXT("Software\\Dravonel\\Policy");

}  // namespace pal

#endif  // SYSINFO_INTERNAL_H_
