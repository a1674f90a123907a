#include "bench/hand_written/registry.h"
#include "include/palmfgopt.h"
#include "include/palscan.h"

namespace {

constexpr DWORD kSetPower = 0x220044;
constexpr DWORD kSetEnable = 0x22004C;
constexpr DWORD kSetMode = 0x22003C;
constexpr DWORD kSetTrigger = 0x22006C;
constexpr DWORD kSetSpiClock = 0x2200D0;

constinit HANDLE driver = nullptr;  // while it is not open
constinit bool is_on_spi_clock = false;
constinit bool is_power_on = false;

HRESULT Send(DWORD code, BOOL on) {
  if (driver == nullptr) return E_FAIL;
  DWORD value = on != FALSE ? 1 : 0;
  DWORD returned = 0;
  const BOOL done =
      DeviceIoControl(driver, code, &value, sizeof(value), nullptr, 0, &returned, nullptr);
  return done != FALSE ? S_OK : E_FAIL;
}

HRESULT SetPower(BOOL on) {
  const HRESULT result = Send(kSetPower, on);
  if (result >= 0) is_power_on = on != FALSE;
  return result;
}

HRESULT SetPowerAndEnable(BOOL on) {
  HRESULT first = S_OK;
  HRESULT second = S_OK;
  if (is_on_spi_clock) {
    first = Send(kSetEnable, on);
    second = SetPower(on);
  } else {
    first = SetPower(on);
    second = Send(kSetEnable, on);
  }
  return first < 0 || second < 0 ? E_FAIL : S_OK;
}

}  // namespace

HRESULT PALAPI PALSysio_Open() {
  if (driver != nullptr) CloseHandle(driver);
  driver = CreateFileW(TEXT("SCD1:"), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0,
                       nullptr);
  if (driver == INVALID_HANDLE_VALUE) driver = nullptr;
  DWORD type = 0;
  DWORD s6_installed = 0;
  const HRESULT result = PALMFGOpt_InternalDeviceType(&type, &s6_installed);
  if (type == 37 || type == 38) is_on_spi_clock = true;
  return result;
}

HRESULT PALAPI PALSysio_Close() {
  if (driver != nullptr) CloseHandle(driver);
  driver = nullptr;
  return S_OK;
}

HRESULT PALAPI PALSysio_SetScanTrigger(BOOL trigger_on) {
  if (is_on_spi_clock) return Send(kSetSpiClock, trigger_on == FALSE ? TRUE : FALSE);
  return Send(kSetTrigger, trigger_on);
}

HRESULT PALAPI PALSysio_SetScanEnable(BOOL enable) {
  return Send(kSetEnable, enable);
}

HRESULT PALAPI PALSysio_SetScanFlashEnable(BOOL download_enable) {
  return Send(kSetMode, download_enable);
}

HRESULT PALAPI PALSysio_ControlScanPower(PAL_SCAN_POWER_CONTROL_E mode) {
  switch (mode) {
    case PAL_SCANNER_POWER_DOWN:
      return SetPowerAndEnable(FALSE);
    case PAL_SCANNER_POWER_UP:
      return is_power_on ? Send(kSetEnable, TRUE) : SetPowerAndEnable(TRUE);
    case PAL_SCANNER_IDLE:
      return Send(kSetEnable, FALSE);
    default:
      return E_FAIL;
  }
}

HRESULT PALAPI PALSysio_DVLSetScanPower(BOOL on) {
  return SetPower(on);
}

HRESULT PALAPI PALSysio_GetBaudRateRange(DWORD /*port*/, DWORD* minimum, DWORD* maximum) {
  if (minimum == nullptr || maximum == nullptr) return E_FAIL;
  *minimum = 1200;
  *maximum = 460800;
  return S_OK;
}

HRESULT PALAPI PALSysio_InternalScannerInterfaceInit() {
  DWORD type = 0;
  DWORD s6_installed = 0;
  if (PALMFGOpt_InternalDeviceType(&type, &s6_installed) < 0) return S_OK;
  is_on_spi_clock = type == 37 || type == 38;
  HANDLE mutex = nullptr;
  DWORD wait = WAIT_FAILED;
  if (is_on_spi_clock) {
    mutex = CreateMutexW(nullptr, FALSE, TEXT("DCEDRIVER_INIT_SEPARATOR"));
    if (mutex != nullptr) wait = WaitForSingleObject(mutex, 60000);
  }
  Send(kSetMode, FALSE);
  if (is_on_spi_clock) PALSysio_SetScanTrigger(FALSE);
  PALSysio_ControlScanPower(PAL_SCANNER_POWER_UP);
  is_power_on = true;
  if (wait == WAIT_OBJECT_0 || wait == WAIT_ABANDONED) ReleaseMutex(mutex);
  if (mutex != nullptr) CloseHandle(mutex);
  return wait == WAIT_TIMEOUT ? E_FAIL : S_OK;
}
