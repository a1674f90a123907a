// The start of the scan engine with the reading stack.
#include "frame/trace.h"
#include "frame/unique_handle.h"
#include "include/palmfgopt.h"
#include "include/palscan.h"
#include "scanner/scan_engine.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kScanner};

constexpr DWORD kCameraMutexTimeoutMs = 60000;

// Keeps other holders of the name away. Unlike MutexGuard it has lines of its own, fails after a
// time-out, and releases only a mutex that it owns.
class CameraMutex {
 public:
  CameraMutex() : mutex_(CreateMutexW(nullptr, FALSE, TEXT("DCEDRIVER_INIT_SEPARATOR"))) {
    if (mutex_) wait_ = WaitForSingleObject(mutex_.get(), kCameraMutexTimeoutMs);
    if (wait_ == WAIT_TIMEOUT) {
      kTrace.Error("Camera mutex timeout.\r\n");
    } else {
      // The line of every other outcome, also where the mutex could not be created.
      kTrace.Info("Got camera mutex.\r\n");
    }
  }
  ~CameraMutex() {
    if (wait_ == WAIT_OBJECT_0 || wait_ == WAIT_ABANDONED) ReleaseMutex(mutex_.get());
  }
  CameraMutex(const CameraMutex&) = delete;
  CameraMutex& operator=(const CameraMutex&) = delete;

  [[nodiscard]] HRESULT result() const { return wait_ == WAIT_TIMEOUT ? E_FAIL : S_OK; }

 private:
  UniqueMutex mutex_;
  DWORD wait_ = WAIT_FAILED;
};

// The steps trace their own results. The power counts as on even where a step fails.
void BringUp(const ScanEngine& engine) {
  ScanSetOperationalMode(TRUE);
  if (engine.is_on_spi_clock) PALSysio_SetScanTrigger(FALSE);
  PALSysio_ControlScanPower(PAL_SCANNER_POWER_UP);
  SetScanPowerState(true);
}

HRESULT BringUpUnderMutex(const ScanEngine& engine) {
  const CameraMutex mutex;
  BringUp(engine);
  return mutex.result();
}

HRESULT InitInterface() {
  DWORD type = 0;
  DWORD s6_installed = 0;
  static_cast<void>(PALMFGOpt_InternalDeviceType(&type, &s6_installed));  // never fails
  const ScanEngine& engine = LearnScanEngine(type);
  kTrace.Info("Internal DevType: %d\r\n", type);
  if (engine.is_on_spi_clock) return BringUpUnderMutex(engine);
  BringUp(engine);
  return S_OK;
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALSysio_InternalScannerInterfaceInit() {
  pal::kTrace.Info("Entry PALSysio_InternalScannerInterfaceInit\r\n");
  const HRESULT result = pal::InitInterface();
  pal::kTrace.Info("Exit PALSysio_InternalScannerInterfaceInit\r\n");
  return result;
}
