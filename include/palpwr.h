/**
 * @file palpwr.h
 * @brief Power: suspend and screen-off timeouts, boot option, power button, holding off suspend.
 *
 * The timeouts are the platform's own, REG_DWORD values in seconds under HKEY_LOCAL_MACHINE
 * "System\CurrentControlSet\Control\Power\Timeouts"; 0 is never. After each change the power
 * manager is told to read them again through the event "PowerManager/ReloadActivityTimeouts", which
 * PALPWRInit creates.
 *
 * The functions here may be called from any thread of any process, but for PALPWRInit and
 * PALPWRTerm, which no other call of the same process may overlap; the library calls them when a
 * process attaches and detaches. No lock is taken: of two changes at once the later one stands. A
 * null out-pointer gives E_FAIL, and nothing is read or traced. The steps of every function are
 * traced with facility 1007.
 */
#ifndef PALPWR_H_
#define PALPWR_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/**
 * Creates the events of the family, "PowerManager/ReloadActivityTimeouts" and
 * "BackLightChangeEvent". The library's entry calls it when a process attaches; a further call does
 * nothing.
 *
 * @retval S_OK       both events are there
 * @retval PAL_PWR_E_EVENT(error) an event could not be created; xxxx are the low 16 bits of the
 * system error. No event is kept: a further call tries again
 */
HRESULT PALAPI PALPWRInit(void);

/**
 * Closes the events. The library's entry calls it when a process detaches. Keep-awake threads are
 * neither stopped nor waited for.
 *
 * @retval S_OK always
 */
HRESULT PALAPI PALPWRTerm(void);

/**
 * After how many minutes without use the device suspends on battery: REG_DWORD
 * "BattSuspendTimeout".
 *
 * @param minutes 0 (never), 1, 2, 3, 4, 5, 6, 10, 11, 15 or 30
 *
 * @retval S_OK       stored, and the power manager was told
 * @retval PAL_PWR_E_NO_SUCH_TIMEOUT not one of these values; nothing was changed
 * @retval PAL_PWR_E_NO_EVENT stored, but there is no event to tell the power manager with:
 * PALPWRInit was not called or failed
 * @retval PAL_PWR_E_EVENT(error) stored, but the event could not be set; xxxx are the low 16 bits
 * of the system error
 * @retval PAL_E_WIN32(error) not stored: the system error of the registry, PAL_E_FILE_NOT_FOUND
 * where the key is missing
 */
HRESULT PALAPI PALPWRSetDeviceOff_Batt(DWORD minutes);

/**
 * As PALPWRSetDeviceOff_Batt, on external power: REG_DWORD "ACSuspendTimeout".
 *
 * @param minutes 0 (never), 1, 2, 5, 6, 10, 11, 15 or 30
 *
 * @retval S_OK       as for PALPWRSetDeviceOff_Batt, and so are the failures
 */
HRESULT PALAPI PALPWRSetDeviceOff_ExtPwr(DWORD minutes);

/**
 * Reads "BattSuspendTimeout".
 *
 * @param[out] minutes any number of whole minutes, a remainder is dropped; 0 is never, but also
 *                     less than a minute. Not null; not written on failure
 *
 * @retval S_OK       answered
 * @retval E_FAIL     @p minutes is null
 * @retval PAL_E_WIN32(error) the system error of the registry: PAL_E_FILE_NOT_FOUND where the value
 * is missing, PAL_E_MORE_DATA where it has more than four bytes
 */
HRESULT PALAPI PALPWRGetDeviceOff_Batt(DWORD* minutes);

/** As PALPWRGetDeviceOff_Batt, from "ACSuspendTimeout". */
HRESULT PALAPI PALPWRGetDeviceOff_ExtPwr(DWORD* minutes);

/**
 * After how many seconds without use the screen turns off on battery: REG_DWORD "BattUserIdle".
 *
 * Other than the device-off setters it ignores what it does not allow, and does without an event.
 *
 * @param seconds 0 (never), 60, 120, 180, 240, 300, 360 or 660
 *
 * @retval S_OK       stored, and the power manager was told where there is an event to tell it by;
 *                    or not one of these values, and nothing was changed
 * @retval PAL_E_WIN32(error) the system error of the registry, and nothing was stored:
 * PAL_E_FILE_NOT_FOUND where the key is missing; or of setting the event, after the value was
 * stored
 */
HRESULT PALAPI PALPWRSetScreenOff_Batt(LONG seconds);

/**
 * As PALPWRSetScreenOff_Batt, on external power: REG_DWORD "ACUserIdle".
 *
 * @param seconds 0 (never), 60, 120, 121, 180, 240, 300, 360, 600, 660, 900 or 1800
 *
 * @retval S_OK       as for PALPWRSetScreenOff_Batt, and so are the failures
 */
HRESULT PALAPI PALPWRSetScreenOff_ExtPwr(LONG seconds);

/**
 * Reads "BattUserIdle".
 *
 * @param[out] seconds any number; 0 is never. Not null; not written on failure
 *
 * @retval S_OK       answered
 * @retval E_FAIL     @p seconds is null
 * @retval PAL_E_WIN32(error) as for PALPWRGetDeviceOff_Batt
 */
HRESULT PALAPI PALPWRGetScreenOff_Batt(DWORD* seconds);

/** As PALPWRGetScreenOff_Batt, from "ACUserIdle". */
HRESULT PALAPI PALPWRGetScreenOff_ExtPwr(DWORD* seconds);

/**
 * Hands the boot option to the configuration driver "CFG1:" (control code 100001), which keeps it.
 *
 * @param option 0 to 255; its meaning and what else is refused are the driver's
 *
 * @retval S_OK       the driver has taken it; also where it cannot be opened and the system gives
 *                    no error for that
 * @retval 19         the driver refused it. No HRESULT: taken for one it is a success
 * @retval PAL_E_WIN32(error) the driver cannot be opened: PAL_E_DEV_NOT_EXIST where the device has
 * none, PAL_E_SHARING_VIOLATION while another has it open
 */
HRESULT PALAPI PALPWRSetBootOption(DWORD option);

/**
 * Reads the boot option from the configuration driver "CFG1:" (control code 100000).
 *
 * @param[out] option 0 to 255. Not null; not written on failure
 *
 * @retval S_OK       answered; also where the driver cannot be opened and the system gives no error
 *                    for that, and then @p option is not written
 * @retval E_FAIL     @p option is null; the driver was not opened
 * @retval 19         the driver does not answer. No HRESULT: taken for one it is a success
 * @retval PAL_E_WIN32(error) as for PALPWRSetBootOption
 */
HRESULT PALAPI PALPWRGetBootOption(DWORD* option);

/**
 * What the power button does: REG_DWORD "PowerButtonSuspendType" under HKEY_LOCAL_MACHINE
 * "Drivers\Builtin\Pwrbutton", as the code that the button's driver reads.
 *
 * @param option 0 to 5, stored as 0, 0x01000000, 0x00200000, 0x00040000, 0x00800000 and 0x00020000.
 *               Any other number is stored as option 0 is
 *
 * @retval S_OK       stored
 * @retval PAL_E_WIN32(error) the system error of the registry: PAL_E_FILE_NOT_FOUND where the key
 * is missing
 */
HRESULT PALAPI PALPWRSetPwrButton(LONG option);

/**
 * Reads what the power button does.
 *
 * @param[out] option 0 to 5. Not null; not written on failure
 *
 * @retval S_OK       answered
 * @retval E_FAIL     what is stored is the code of no option, or @p option is null
 * @retval PAL_E_WIN32(error) the system error of the registry: PAL_E_FILE_NOT_FOUND where the value
 * is missing
 */
HRESULT PALAPI PALPWRGetPwrButton(DWORD* option);

/**
 * Holds off suspend for a while.
 *
 * Command 0 starts a keep-awake thread in the calling process, each time a further one. It resets
 * the system's idle timers at once and then once in a period, until it is told to stop. The period
 * has as many seconds as the shorter of the two device-off timeouts has minutes, at most 45, and 20
 * where that is 0 or where a timeout cannot be read. Both are read when the thread starts.
 *
 * Command 1 stops every keep-awake thread of the calling process: each ends when its present period
 * does. A thread that has not ended by the next command 0 goes on.
 *
 * A thread keeps the library loaded in its process until it ends. Stop it before you free the
 * library: it could otherwise be stopped only by loading it again, and would run to the end of the
 * process, which ends it in any case.
 *
 * @param command 0 start, 1 stop; any other does nothing
 *
 * @retval S_OK done
 * @retval 20   the thread could not be started. No HRESULT: taken for one it is a success
 */
HRESULT PALAPI PALPWRSuspendCtrl(DWORD command);

/**
 * Does nothing: these devices tell their battery level elsewhere. Nothing is read or written.
 * @retval S_OK always
 */
HRESULT PALAPI PALPWRGetBatteryLevel(void);

/**
 * Does nothing, as PALPWRGetBatteryLevel.
 * @retval S_OK always
 */
HRESULT PALAPI PALPWRGetBatteryPercentRemaining(void);

PAL_INTERFACE_END

#endif /* PALPWR_H_ */
