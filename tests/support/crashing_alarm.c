/* A program that ends its process with a crash, where it cannot tell the level of the volume, and
 * finds fault with one level. */
#include <pal.h>
#include <palsim_program.h>
#include <stdlib.h>

int PalProgramMain(void) {
  DWORD level = 0;
  if (PALBEEPGetVolume(&level) != S_OK) abort();
  PalProgramCheck(level != PAL_VOLUME_MEDIUM, "the volume is not medium");
  return 0;
}
