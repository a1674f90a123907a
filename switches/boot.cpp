// Restarts of the terminal.
#include <algorithm>
#include <array>

#include "frame/trace.h"
#include "include/palboot.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kBoot};

constexpr DWORD kBeforeRestart = 0x010123B0;  // a kernel control

struct BootOption {
  LONG option;
  const WCHAR* state;
  DWORD before_restart;  // the input of the kernel control; 0: the control is not called
};

constexpr auto kBootOptions = std::to_array<BootOption>({
    {PAL_BOOT_WARM, TEXT("reboot"), 0},
    {PAL_BOOT_COLD, TEXT("coldreboot"), 0},
    {PAL_BOOT_PREPARED, TEXT("reboot"), 0x00040006},
});

bool PrepareKernel(DWORD value) {
  if (KernelIoControl(kBeforeRestart, &value, sizeof(value), nullptr, 0, nullptr) != FALSE) {
    return true;
  }
  kTrace.Error("KernelIoControl failed. win32err:0x%x", GetLastError());
  return false;
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALBOOT_BootTerminal(LONG option) {
  const auto* const row = std::ranges::find(pal::kBootOptions, option, &pal::BootOption::option);
  if (row == pal::kBootOptions.end()) {
    pal::kTrace.Error("Boot request invalid option");
    return E_FAIL;
  }
  if (row->before_restart == 0 || pal::PrepareKernel(row->before_restart)) {
    SetSystemPowerState(row->state, POWER_STATE_RESET, POWER_FORCE);
  }
  return S_OK;
}
