// Which keyboard the device has.
#include <array>
#include <bit>

#include "frame/trace.h"
#include "include/palkey.h"
#include "sysinfo/internal.h"

namespace pal {
namespace {
constexpr std::array<BYTE, 4> kKeyboardType{0x35};
}

}  // namespace pal

HRESULT PALAPI PALKEYGetType(DWORD* type) {
  if (type == nullptr) return E_FAIL;
  std::array<BYTE, sizeof(DWORD)> answer{};
  DWORD bytes = 0;
  if (pal::PalReadNvParm(pal::kKeyboardType, answer, bytes) && bytes != 0) {
    *type = std::bit_cast<DWORD>(answer);
    return S_OK;
  }
  pal::kKeypadTrace.Error("GetKBType - KernelIoControl() failed. win32err: 0x%x\r\n",
                          GetLastError());
  *type = 0;
  return S_OK;
}
