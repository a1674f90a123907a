#include "sysinfo/nonvolatile_parameters.h"

#include <algorithm>

namespace {

constexpr DWORD kReadParameter = 0x010122C4;  // IOCTL_HAL_DVL_READ_PARM

}  // namespace

bool PalReadNvParm(std::span<const BYTE> request, std::span<BYTE> answer, DWORD& bytes_returned) {
  const auto room = static_cast<DWORD>(answer.size());
  DWORD returned = 0;
  bytes_returned = 0;
  if (KernelIoControl(kReadParameter, const_cast<BYTE*>(request.data()),
                      static_cast<DWORD>(request.size()), answer.data(), room,
                      &returned) == FALSE) {
    return false;
  }
  bytes_returned = std::min(returned, room);
  return true;
}
