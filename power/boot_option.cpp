// The boot option, one byte that the configuration driver stores.
#include "frame/result.h"
#include "frame/trace.h"
#include "frame/unique_handle.h"
#include "include/palpwr.h"

namespace pal {
namespace {

constexpr DWORD kGetBootOption = 100000;
constexpr DWORD kSetBootOption = 100001;

using OpenFailedFormat = TraceSource::Format<const char*, DWORD>;

HRESULT OpenConfigurationDriver(UniqueFile& driver, OpenFailedFormat open_failed) {
  driver.Reset(CreateFileW(TEXT("CFG1:"), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                           0, nullptr));
  if (driver) return S_OK;
  const DWORD error = GetLastError();
  kPowerTrace.Error<const char*, DWORD>(open_failed, "CFG1:", error);
  return HResultFromWin32(error);
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALPWRSetBootOption(DWORD option) {
  pal::UniqueFile driver;
  const HRESULT opened = pal::OpenConfigurationDriver(
      driver, "PALPWRSetBootOption - ERROR Failed to open device: %s, win32err: 0x%x\r\n");
  if (!driver) return opened;
  // The driver reads the option from the buffer size; there is no buffer.
  DWORD returned = 0;
  if (DeviceIoControl(driver.get(), pal::kSetBootOption, nullptr, option, nullptr, 0, &returned,
                      nullptr) != FALSE) {
    return S_OK;
  }
  pal::kPowerTrace.Error(
      "PALPWRSetBootOption - ERROR DeviceIoControl(handle: 0x%x, code:%d).  Aborting request. "
      "win32err: 0x%x\r\n",
      driver.get(), pal::kSetBootOption, GetLastError());
  return PAL_PWR_DRIVER_REFUSED;
}

HRESULT PALAPI PALPWRGetBootOption(DWORD* option) {
  if (option == nullptr) return E_FAIL;
  pal::UniqueFile driver;
  const HRESULT opened = pal::OpenConfigurationDriver(
      driver, "PALPWRGetBootOption - ERROR Failed to open device: %s, win32err: 0x%x\r\n");
  if (!driver) return opened;
  BYTE stored = 0;
  DWORD returned = 0;
  if (DeviceIoControl(driver.get(), pal::kGetBootOption, nullptr, 0, &stored, sizeof(stored),
                      &returned, nullptr) == FALSE) {
    pal::kPowerTrace.Error(
        "PALPWRGetBootOption - ERROR DeviceIoControl(handle:0x%x,code:%d) failed. "
        "win32err: 0x%x\r\n",
        driver.get(), pal::kGetBootOption, GetLastError());
    return PAL_PWR_DRIVER_REFUSED;
  }
  pal::kPowerTrace.Info("PALPWRGetBootOption - bootoption: 0x%x, proc_id: 0x%x\r\n", stored,
                        GetCurrentProcessId());
  *option = stored;
  return S_OK;
}
