// The driver of the scan engine, "SCD1:", and what it is told.
#ifndef SCANNER_SCAN_DRIVER_H_
#define SCANNER_SCAN_DRIVER_H_

#include "platform/wince.h"

namespace pal {

enum class ScanOperation : BYTE { kPower, kEnable, kMode, kTrigger, kSpiClockTrigger };

// Closes a driver that is open. The handle is kept also where it is invalid; it is given for the
// trace.
HANDLE OpenScanDriver();
void CloseScanDriver();

// Sends 0 or 1 for `argument` as the operation wants it, and traces the outcome with `argument`.
// E_FAIL where the driver is not open or refuses.
HRESULT SendToScanDriver(ScanOperation operation, BOOL argument);

}  // namespace pal

#endif  // SCANNER_SCAN_DRIVER_H_
