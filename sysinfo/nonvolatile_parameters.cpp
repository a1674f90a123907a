#include "sysinfo/nonvolatile_parameters.h"

#include <algorithm>

namespace {
constexpr DWORD kReadParameter = 0x010122C4;
}

bool PalReadNvParm(std::span<const BYTE> request, std::span<BYTE> answer, DWORD& bytes_returned) {
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
