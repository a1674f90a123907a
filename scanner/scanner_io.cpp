// The exports of the bar-code reading stack's way to the scan engine.
#include <span>

#include "frame/result.h"
#include "frame/trace.h"
#include "include/palmfgopt.h"
#include "include/palscan.h"
#include "scanner/scan_driver.h"
#include "scanner/scan_engine.h"

namespace {

constexpr pal::TraceSource kTrace{pal::Facility::kScanner};

constexpr DWORD kMinimumBaudRate = 1200;
constexpr DWORD kMaximumBaudRate = 460800;

// Every switch gets its turn, also behind one that fails.
HRESULT SwitchAll(std::span<const pal::ScanSwitch> switches, BOOL on) {
  HRESULT result = S_OK;
  for (const pal::ScanSwitch set : switches) {
    if (pal::Failed(set(on))) result = E_FAIL;
  }
  return result;
}

HRESULT PowerUp() {
  if (pal::IsScanPowerOn()) return ScanSetEnable(TRUE);
  return SwitchAll(pal::CurrentScanEngine().switching_order, TRUE);
}

}  // namespace

HRESULT PALAPI PALSysio_Open() {
  kTrace.Info("Entry PALSysio_Open\r\n");
  HANDLE driver = pal::OpenScanDriver();
  DWORD type = 0;
  DWORD s6_installed = 0;
  const HRESULT result = PALMFGOpt_InternalDeviceType(&type, &s6_installed);
  if (pal::Succeeded(result) && pal::ScanEngineOf(type).is_on_spi_clock) {
    pal::LearnScanEngine(type);
    // The line alone: the trigger is not pulled here, on purpose.
    kTrace.Info("ENG14 - PALSysio_Open. PALSysio_SetScanTrigger(TRUE)\r\n");
  }
  kTrace.Info("Exit PALSysio_Open g_hOEMScanDLL: 0x%x, hr: 0x%x\r\n", driver, result);
  return result;
}

HRESULT PALAPI PALSysio_Close() {
  kTrace.Info("PALSysio_Close\r\n");
  pal::CloseScanDriver();
  return S_OK;
}

HRESULT PALAPI PALSysio_SetScanTrigger(BOOL trigger_on) {
  const pal::ScanEngine& engine = pal::CurrentScanEngine();
  if (engine.is_on_spi_clock) kTrace.Info("PALSysio_SetScanTrigger SPIClk line\r\n");
  return pal::SendToScanDriver(engine.trigger, trigger_on);
}

HRESULT PALAPI PALSysio_SetScanEnable(BOOL enable) {
  return ScanSetEnable(enable);
}

HRESULT PALAPI PALSysio_SetScanFlashEnable(BOOL download_enable) {
  kTrace.Info("Enter PALSysio_SetScanFlashEnable: fDownloadEnable:%d\r\n", download_enable);
  const HRESULT result = ScanSetOperationalMode(download_enable == FALSE ? TRUE : FALSE);
  // The line ends without the result: kept so.
  kTrace.Info("Exit PALSysio_SetScanFlashEnable hr:\r\n");
  return result;
}

HRESULT PALAPI PALSysio_ControlScanPower(PAL_SCAN_POWER_CONTROL_E mode) {
  switch (mode) {
    case PAL_SCANNER_POWER_DOWN:
      kTrace.Info("PALSysio_ControlScanPower: PAL_SCANNER_POWER_DOWN\r\n");
      return SwitchAll(pal::CurrentScanEngine().switching_order, FALSE);
    case PAL_SCANNER_POWER_UP:
      kTrace.Info("PALSysio_ControlScanPower: PAL_SCANNER_POWER_UP\r\n");
      return PowerUp();
    case PAL_SCANNER_IDLE:
      kTrace.Info("PALSysio_ControlScanPower: PAL_SCANNER_IDLE\r\n");
      return ScanSetEnable(FALSE);
    default:
      kTrace.Error("Invalid PAL_SCAN_POWER_CONTROL_E parameter value of %d\r\n", mode);
      return E_FAIL;
  }
}

HRESULT PALAPI PALSysio_DVLSetScanPower(BOOL on) {
  return PALSysio_SetScanPower(on != FALSE ? 1 : 0);
}

HRESULT PALAPI PALSysio_GetBaudRateRange(DWORD /*port*/, DWORD* minimum, DWORD* maximum) {
  if (minimum == nullptr || maximum == nullptr) return E_FAIL;
  *minimum = kMinimumBaudRate;
  *maximum = kMaximumBaudRate;
  return S_OK;
}
