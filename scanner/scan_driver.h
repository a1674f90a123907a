// The driver of the scan engine, "SCD1:".
#ifndef SCANNER_SCAN_DRIVER_H_
#define SCANNER_SCAN_DRIVER_H_

#include "platform/wince.h"

namespace pal {

enum class ScanOperation : BYTE { kPower, kEnable, kMode, kTrigger, kSpiClockTrigger };

// Closes a driver that is open, and opens it again. Returns the handle, also an invalid one, for
// the trace.
HANDLE OpenScanDriver();
void CloseScanDriver();

// Sends `argument` as 0 or 1, or its inverse where the operation needs that, and traces the outcome
// with `argument`.
// E_FAIL where the driver is not open or refuses.
HRESULT SendToScanDriver(ScanOperation operation, BOOL argument);

}  // namespace pal

#endif  // SCANNER_SCAN_DRIVER_H_
