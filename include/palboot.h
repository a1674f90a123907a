/**
 * @file palboot.h
 * @brief Restart of the terminal.
 * @family switches
 *
 * The platform's power manager is told to restart the terminal, and restarts it by force: no
 * program is asked, and what a program has not stored is lost. Any thread of any process may call;
 * nothing is kept between calls. Failures are traced with facility 1018.
 */
#ifndef PALBOOT_H_
#define PALBOOT_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/** How the terminal restarts. The numbers are those of the characters '0', '1' and '2'. */
typedef enum PALBootOption {
  /** A warm restart, the power state "reboot". */
  PAL_BOOT_WARM = 48,
  /** A cold restart, the power state "coldreboot". */
  PAL_BOOT_COLD = 49,
  /** A warm restart that the kernel is told about first, with control 0x010123B0. */
  PAL_BOOT_PREPARED = 50
} PALBootOption;

/**
 * Restarts the terminal. The call does not return if the platform restarts.
 *
 * PAL_BOOT_WARM and PAL_BOOT_COLD are one request, SetSystemPowerState with POWER_STATE_RESET and
 * POWER_FORCE. PAL_BOOT_PREPARED first gives 0x00040006 to the kernel control 0x010123B0. If that
 * control fails, which is traced, the terminal is not restarted.
 *
 * @param option  #PALBootOption. The number of the character, not the value of the digit.
 *
 * @retval S_OK    The terminal was not restarted: the platform refused, or the kernel control
 *                 failed.
 * @retval E_FAIL  @p option is none of the three. Nothing was requested.
 */
HRESULT PALAPI PALBOOT_BootTerminal(LONG option);

PAL_INTERFACE_END

#endif /* PALBOOT_H_ */
