/* An example for 'palsim explore --program': a beep at full volume, whatever volume is set.
 *
 * It has a fault that no test on a desk shows: it does not look at the result of PALBEEPGetVolume.
 * If that call fails, the program sets a level that was never set before. 'palsim explore' finds
 * the fault in seconds (docs/explore.md).
 */
#include <pal.h>
#include <palsim_program.h>

int PalProgramMain(void) {
  DWORD level = 0xFFFFFFFF;
  PALBEEPGetVolume(&level); /* the fault */
  PALBEEPSetVolume(PAL_VOLUME_VERY_HIGH);
  PALBEEPChangeConfigError();
  PalProgramCheck(level <= PAL_VOLUME_VERY_HIGH, "the level that is put back is one");
  PALBEEPSetVolume(level);
  return 0;
}
