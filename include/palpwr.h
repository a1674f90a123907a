/**
 * @file palpwr.h
 * @brief Power: suspend and screen-off timeouts, boot option, power button, keeping awake.
 * @family power
 *
 * The timeouts are values of the platform: REG_DWORD in seconds under HKEY_LOCAL_MACHINE
 * "System\CurrentControlSet\Control\Power\Timeouts"; 0 means never. After each change the event
 * "PowerManager/ReloadActivityTimeouts" tells the power manager to read them again. PALPWRInit
 * creates this event.
 *
 * Any thread of any process may call these functions. PALPWRInit and PALPWRTerm are the exception:
 * no other call of the same process may overlap them. The library calls them when a process
 * attaches and detaches. No lock is taken: of two changes at once the later one stays. For a null
 * out-pointer the result is E_FAIL, and nothing is read or traced. The steps of every function are
 * traced with facility 1007.
 */
#ifndef PALPWR_H_
#define PALPWR_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/**
 * What the power button does. The registry has the number in parentheses, a flag of the platform's
 * power states; the driver of the button gives it its meaning.
 */
typedef enum PALPowerButtonOption {
  /** No flag (0). */
  PAL_POWER_BUTTON_NOTHING = 0,
  /** POWER_STATE_USERIDLE (0x01000000). */
  PAL_POWER_BUTTON_USER_IDLE = 1,
  /** POWER_STATE_SUSPEND (0x00200000). */
  PAL_POWER_BUTTON_SUSPEND = 2,
  /** POWER_STATE_CRITICAL (0x00040000). */
  PAL_POWER_BUTTON_CRITICAL = 3,
  /** POWER_STATE_RESET (0x00800000). */
  PAL_POWER_BUTTON_RESET = 4,
  /** POWER_STATE_OFF (0x00020000). */
  PAL_POWER_BUTTON_OFF = 5
} PALPowerButtonOption;

/** The commands of PALPWRSuspendCtrl. */
typedef enum PALSuspendCommand {
  /** Start a keep-awake thread. */
  PAL_SUSPEND_KEEP_AWAKE = 0,
  /** Stop all keep-awake threads of the process. */
  PAL_SUSPEND_ALLOW = 1
} PALSuspendCommand;

/**
 * Creates the events "PowerManager/ReloadActivityTimeouts" and "BackLightChangeEvent". A further
 * call does nothing.
 *
 * @retval S_OK  Both events are there.
 * @retval PAL_PWR_E_EVENT(error)  An event could not be created. None is kept: a further call tries
 *               again.
 */
HRESULT PALAPI PALPWRInit(void);

/** Closes the events. Keep-awake threads go on, and are not waited for. @retval S_OK  Always. */
HRESULT PALAPI PALPWRTerm(void);

/**
 * Sets after how many minutes without use the device suspends on battery: the value
 * "BattSuspendTimeout".
 *
 * @param minutes  [minutes] 0 (never), 1, 2, 3, 4, 5, 6, 10, 11, 15 or 30.
 *
 * @retval S_OK  Stored, and the power manager was told.
 * @retval PAL_PWR_E_NO_SUCH_TIMEOUT  The number is not allowed. Nothing was changed.
 * @retval PAL_PWR_E_NO_EVENT      Stored, but there is no event to tell the power manager with:
 *               PALPWRInit was not called or failed.
 * @retval PAL_PWR_E_EVENT(error)  Stored, but the event could not be set.
 * @retval PAL_E_WIN32(error)      Not stored, with the error of writing: PAL_E_FILE_NOT_FOUND if
 *               the key does not exist.
 */
HRESULT PALAPI PALPWRSetDeviceOff_Batt(DWORD minutes);

/**
 * Sets after how many minutes without use the device suspends on external power: the value
 * "ACSuspendTimeout".
 *
 * @param minutes  [minutes] 0 (never), 1, 2, 5, 6, 10, 11, 15 or 30.
 * @like PALPWRSetDeviceOff_Batt
 */
HRESULT PALAPI PALPWRSetDeviceOff_ExtPwr(DWORD minutes);

/**
 * Reads "BattSuspendTimeout".
 *
 * @param[out] minutes  [minutes] Any number. Remaining seconds are dropped: 0 means never, or less
 *                      than a minute. Unchanged on failure. Not null.
 *
 * @retval S_OK    Answered.
 * @retval E_FAIL  The out-pointer is null.
 * @retval PAL_E_WIN32(error)  The error of reading: PAL_E_FILE_NOT_FOUND if the value does not
 *                 exist, PAL_E_MORE_DATA if it has more than four bytes.
 */
HRESULT PALAPI PALPWRGetDeviceOff_Batt(DWORD* minutes);
/** Reads "ACSuspendTimeout". @like PALPWRGetDeviceOff_Batt */
HRESULT PALAPI PALPWRGetDeviceOff_ExtPwr(DWORD* minutes);

/**
 * Sets after how many seconds without use the screen turns off on battery: the value
 * "BattUserIdle".
 *
 * Unlike the functions for the suspend timeouts it ignores a number that is not allowed, and works
 * without an event.
 *
 * @param seconds  [seconds] 0 (never), 60, 120, 180, 240, 300, 360 or 660.
 *
 * @retval S_OK  Stored, and the power manager was told if there is an event. Or the number is not
 *               allowed, and nothing was changed.
 * @retval PAL_E_WIN32(error)  Not stored, with the error of writing: PAL_E_FILE_NOT_FOUND if the
 *               key does not exist. Or stored, with the error of setting the event.
 */
HRESULT PALAPI PALPWRSetScreenOff_Batt(LONG seconds);

/**
 * Sets after how many seconds without use the screen turns off on external power: the value
 * "ACUserIdle".
 *
 * @param seconds  [seconds] 0 (never), 60, 120, 121, 180, 240, 300, 360, 600, 660, 900 or 1800.
 * @like PALPWRSetScreenOff_Batt
 */
HRESULT PALAPI PALPWRSetScreenOff_ExtPwr(LONG seconds);

/**
 * Reads "BattUserIdle".
 *
 * @param[out] seconds  [seconds] Any number. 0 means never. Unchanged on failure. Not null.
 * @like PALPWRGetDeviceOff_Batt
 */
HRESULT PALAPI PALPWRGetScreenOff_Batt(DWORD* seconds);
/** Reads "ACUserIdle". @like PALPWRGetScreenOff_Batt */
HRESULT PALAPI PALPWRGetScreenOff_ExtPwr(DWORD* seconds);

/**
 * Gives the boot option to the configuration driver "CFG1:", which keeps it: control code 100001.
 *
 * @param option  0 to 255. The driver gives these numbers their meaning, and can refuse some.
 *
 * @retval S_OK  The driver has taken it. Also if the driver cannot be opened and the platform gives
 *               no error for this.
 * @retval PAL_PWR_DRIVER_REFUSED  The driver refused.
 * @retval PAL_E_WIN32(error)  The driver cannot be opened: PAL_E_DEV_NOT_EXIST if the device has
 *               none, PAL_E_SHARING_VIOLATION while another program has it open.
 */
HRESULT PALAPI PALPWRSetBootOption(DWORD option);

/**
 * Reads the boot option from the configuration driver "CFG1:": control code 100000.
 *
 * @param[out] option  0 to 255. Unchanged on failure. Not null.
 *
 * @retval S_OK    Answered. Also if the driver cannot be opened and the platform gives no error for
 *                 this; @p option is then unchanged.
 * @retval E_FAIL  @p option is null. The driver was not opened.
 * @retval PAL_PWR_DRIVER_REFUSED  The driver does not answer.
 * @like PALPWRSetBootOption
 */
HRESULT PALAPI PALPWRGetBootOption(DWORD* option);

/**
 * Sets what the power button does: the REG_DWORD "PowerButtonSuspendType" under HKEY_LOCAL_MACHINE
 * "Drivers\Builtin\Pwrbutton".
 *
 * @param option  #PALPowerButtonOption. Any other number is stored as PAL_POWER_BUTTON_NOTHING is.
 *
 * @retval S_OK  Stored.
 * @retval PAL_E_WIN32(error)  The error of writing: PAL_E_FILE_NOT_FOUND if the key does not exist.
 */
HRESULT PALAPI PALPWRSetPwrButton(LONG option);

/**
 * Reads what the power button does.
 *
 * @param[out] option  #PALPowerButtonOption. Unchanged on failure. Not null.
 *
 * @retval S_OK    Answered.
 * @retval E_FAIL  The stored number belongs to no option, or @p option is null.
 * @retval PAL_E_WIN32(error)  The error of reading: PAL_E_FILE_NOT_FOUND if the value does not
 *                 exist.
 */
HRESULT PALAPI PALPWRGetPwrButton(DWORD* option);

/**
 * Keeps the device from suspending, or allows it again.
 *
 * PAL_SUSPEND_KEEP_AWAKE starts a thread in the calling process; each call starts a further one.
 * The thread resets the idle timers of the system at once and then once in a period. The period is
 * as many seconds as the shorter of the two suspend timeouts has minutes, but at most 45. It is 20
 * seconds if that is 0, or if a timeout cannot be read. The timeouts are read when the thread
 * starts.
 *
 * PAL_SUSPEND_ALLOW stops every keep-awake thread of the calling process. Each ends when its
 * present period ends. A thread that has not ended before the next PAL_SUSPEND_KEEP_AWAKE goes on.
 *
 * A thread keeps the library loaded in its process until it ends. Stop it before you free the
 * library. Otherwise only a program that loads the library again can stop it, and it runs until the
 * process ends.
 *
 * @param command  #PALSuspendCommand. Any other number does nothing.
 *
 * @retval S_OK               Done.
 * @retval PAL_PWR_NO_THREAD  The thread could not be started.
 */
HRESULT PALAPI PALPWRSuspendCtrl(DWORD command);

/** Does nothing: these devices report the level of the battery elsewhere. @retval S_OK  Always. */
HRESULT PALAPI PALPWRGetBatteryLevel(void);

/** Does nothing: these devices report the level of the battery elsewhere. @retval S_OK  Always. */
HRESULT PALAPI PALPWRGetBatteryPercentRemaining(void);

PAL_INTERFACE_END

#endif /* PALPWR_H_ */
