// The exports through which the bar-code reading stack controls the scan engine.
#include <span>

#include "frame/result.h"
#include "frame/trace.h"
#include "include/palmfgopt.h"
#include "include/palscan.h"
#include "scanner/scan_driver.h"
#include "scanner/scan_engine.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kScanner};

constexpr DWORD kMinimumBaudRate = 1200;
constexpr DWORD kMaximumBaudRate = 460800;

// All switches are set, also after one that fails.
HRESULT SwitchAll(std::span<const ScanSwitch> switches, BOOL on) {
  HRESULT result = S_OK;
  for (const ScanSwitch set : switches) {
    if (Failed(set(on))) result = E_FAIL;
  }
  return result;
}

HRESULT PowerUp() {
  if (IsScanPowerOn()) return ScanSetEnable(TRUE);
  return SwitchAll(CurrentScanEngine().switching_order, TRUE);
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALSysio_Open() {
  pal::kTrace.Info("Entry PALSysio_Open\r\n");
  HANDLE driver = pal::OpenScanDriver();
  DWORD type = 0;
  DWORD s6_installed = 0;
  const HRESULT result = PALMFGOpt_InternalDeviceType(&type, &s6_installed);
  if (pal::ScanEngineOf(type).is_on_spi_clock) {
    pal::LearnScanEngine(type);
    // Only the line: the trigger is not sent here, on purpose.
    pal::kTrace.Info("ENG14 - PALSysio_Open. PALSysio_SetScanTrigger(TRUE)\r\n");
  }
  pal::kTrace.Info("Exit PALSysio_Open g_hOEMScanDLL: 0x%x, hr: 0x%x\r\n", driver, result);
  return result;
}

HRESULT PALAPI PALSysio_Close() {
  pal::kTrace.Info("PALSysio_Close\r\n");
  pal::CloseScanDriver();
  return S_OK;
}

HRESULT PALAPI PALSysio_SetScanTrigger(BOOL trigger_on) {
  const pal::ScanEngine& engine = pal::CurrentScanEngine();
  if (engine.is_on_spi_clock) pal::kTrace.Info("PALSysio_SetScanTrigger SPIClk line\r\n");
  return pal::SendToScanDriver(engine.trigger, trigger_on);
}

HRESULT PALAPI PALSysio_SetScanEnable(BOOL enable) {
  return pal::ScanSetEnable(enable);
}

HRESULT PALAPI PALSysio_SetScanFlashEnable(BOOL download_enable) {
  pal::kTrace.Info("Enter PALSysio_SetScanFlashEnable: fDownloadEnable:%d\r\n", download_enable);
  const HRESULT result = pal::ScanSetOperationalMode(download_enable == FALSE ? TRUE : FALSE);
  // The line has no result behind "hr:".
  pal::kTrace.Info("Exit PALSysio_SetScanFlashEnable hr:\r\n");
  return result;
}

HRESULT PALAPI PALSysio_ControlScanPower(PAL_SCAN_POWER_CONTROL_E mode) {
  switch (mode) {
    case PAL_SCANNER_POWER_DOWN:
      pal::kTrace.Info("PALSysio_ControlScanPower: PAL_SCANNER_POWER_DOWN\r\n");
      return pal::SwitchAll(pal::CurrentScanEngine().switching_order, FALSE);
    case PAL_SCANNER_POWER_UP:
      pal::kTrace.Info("PALSysio_ControlScanPower: PAL_SCANNER_POWER_UP\r\n");
      return pal::PowerUp();
    case PAL_SCANNER_IDLE:
      pal::kTrace.Info("PALSysio_ControlScanPower: PAL_SCANNER_IDLE\r\n");
      return pal::ScanSetEnable(FALSE);
    default:
      pal::kTrace.Error("Invalid PAL_SCAN_POWER_CONTROL_E parameter value of %d\r\n", mode);
      return E_FAIL;
  }
}

HRESULT PALAPI PALSysio_DVLSetScanPower(BOOL on) {
  return pal::PALSysio_SetScanPower(on != FALSE ? 1 : 0);
}

HRESULT PALAPI PALSysio_GetBaudRateRange(DWORD /*port*/, DWORD* minimum, DWORD* maximum) {
  if (minimum == nullptr || maximum == nullptr) return E_FAIL;
  *minimum = pal::kMinimumBaudRate;
  *maximum = pal::kMaximumBaudRate;
  return S_OK;
}
