/**
 * @file palboot.h
 * @brief Restarting the terminal.
 *
 * A restart is requested of the platform's power manager and is forced: no program is asked, none
 * ends in order, and what it has not stored is lost. The function may be called from any thread of
 * any process; nothing is kept between calls.
 */
#ifndef PALBOOT_H_
#define PALBOOT_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/** How the terminal restarts: the options of PALBOOT_BootTerminal, which are characters. */
typedef enum PALBootOption {
  /** '0': a warm restart, the power state "reboot". */
  PAL_BOOT_WARM = 48,
  /** '1': a cold restart, the power state "coldreboot". */
  PAL_BOOT_COLD = 49,
  /** '2': a warm restart that the kernel is told of before, with control 0x010123B0. */
  PAL_BOOT_PREPARED = 50
} PALBootOption;

/**
 * Restarts the terminal. Where the platform does so the call does not come back.
 *
 * Options 48 and 49 are one request to the power manager, SetSystemPowerState with
 * POWER_STATE_RESET and POWER_FORCE. Option 50 first gives 0x00040006 to the kernel control
 * 0x010123B0; where that fails, which is traced with facility 1018, the terminal is not restarted.
 *
 * @param option  A PALBootOption, 48 to 50: the character, not its digit's value.
 *
 * @retval S_OK   the terminal goes on: the restart was refused, or it was not requested because the
 *                kernel control failed
 * @retval E_FAIL @p option is none of the three; nothing was requested
 */
HRESULT PALAPI PALBOOT_BootTerminal(LONG option);

PAL_INTERFACE_END

#endif /* PALBOOT_H_ */
