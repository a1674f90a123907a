/* Sets the action of a key, and ends with what the key has then. */
#ifdef _WIN32
#include <windows.h>
#endif

#include "pal.h"

#ifdef _WIN32
int main(void)
#else
int WinMain(void)
#endif
{
  DWORD action = 0;
  if (PALKEYSetButtonAction(PAL_BUTTON_HANDLE, PAL_KEY_ACTION_SCAN) != S_OK) return 100;
  if (PALKEYGetButtonAction(PAL_BUTTON_HANDLE, &action) != S_OK) return 101;
  return action == PAL_KEY_ACTION_SCAN ? 0 : 102;
}
