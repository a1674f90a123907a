// DVLORQPAL.dll and those of its exports that the application calls.
//
// They are looked up while the application runs. A program that is linked with them does not even
// start where the DLL is missing, and its user does not learn why.
#ifndef STOCKROOM_LIBRARY_H_
#define STOCKROOM_LIBRARY_H_

#include <windows.h>

// Behind <windows.h>, whose types they take.
#include "palbeep.h"
#include "palkey.h"
#include "palscan.h"

namespace stockroom {

struct Library {
  decltype(&::PALBEEPBadRead) PALBEEPBadRead;
  decltype(&::PALBEEPGoodReadEx) PALBEEPGoodReadEx;
  decltype(&::PALKEYGetButtonAction) PALKEYGetButtonAction;
  decltype(&::PALKEYSetButtonAction) PALKEYSetButtonAction;
  decltype(&::PALSysio_Close) PALSysio_Close;
  decltype(&::PALSysio_ControlScanPower) PALSysio_ControlScanPower;
  decltype(&::PALSysio_InternalScannerInterfaceInit) PALSysio_InternalScannerInterfaceInit;
  decltype(&::PALSysio_Open) PALSysio_Open;
  decltype(&::PALSysio_SetScanTrigger) PALSysio_SetScanTrigger;
};

// False where the DLL or one of the exports is missing; messages.txt says which.
bool Load(Library& library);

}  // namespace stockroom

#endif  // STOCKROOM_LIBRARY_H_
