// The two kinds of scan engine: they differ in the trigger and in the order of switching.
#ifndef SCANNER_SCAN_ENGINE_H_
#define SCANNER_SCAN_ENGINE_H_

#include <array>

#include "platform/wince.h"
#include "scanner/scan_driver.h"

namespace pal {

using ScanSwitch = HRESULT (*)(BOOL on);

struct ScanEngine {
  // The trigger is the SPI clock line. Such an engine is started under a mutex.
  bool is_on_spi_clock;
  ScanOperation trigger;
  std::array<ScanSwitch, 2> switching_order;  // on and off alike
};

// The engine of the device type that was learnt last.
[[nodiscard]] const ScanEngine& CurrentScanEngine();
// Learns a device type, and returns its engine.
const ScanEngine& LearnScanEngine(DWORD device_type);
[[nodiscard]] const ScanEngine& ScanEngineOf(DWORD device_type);

[[nodiscard]] bool IsScanPowerOn();
void SetScanPowerState(bool is_on);

// Each returns E_FAIL where the driver is not open or refuses.
HRESULT PALSysio_SetScanPower(BOOL on);  // on success `on` is the new power state
HRESULT ScanSetEnable(BOOL enable);
HRESULT ScanSetOperationalMode(BOOL normal);

}  // namespace pal

#endif  // SCANNER_SCAN_ENGINE_H_
