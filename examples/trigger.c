/* An example for 'palsim explore --program': reads one bar code with the internal scanner.
 *
 * It has a fault that no test on a desk shows: where the trigger cannot be pulled, the driver stays
 * open, and no other program can read until this one ends. 'palsim explore' finds it in seconds
 * (docs/explore.md).
 */
#include <pal.h>
#include <palsim_program.h>

static HRESULT Read(void) {
  HRESULT result = PALSysio_Open();
  if (result != S_OK) return result;
  result = PALSysio_SetScanTrigger(1);
  if (result != S_OK) return result; /* the fault: without PALSysio_Close */
  PalProgramSleep(300);
  PALSysio_SetScanTrigger(0);
  PALSysio_Close();
  return PALBEEPGoodReadEx(PAL_SCAN_TYPE_INTERNAL);
}

int PalProgramMain(void) {
  return Read() == S_OK ? 0 : 1;
}
