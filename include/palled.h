/**
 * @file palled.h
 * @brief The LEDs: notification LED, good-read LED and system light.
 * @family feedback
 *
 * They are the LEDs 0, 3 and 6 of the notification-LED driver, which keeps their state. If the
 * driver refuses to switch an LED, the LED counts as switched already: this is traced, and the
 * function succeeds. Only PALLEDIsGrLedOn asks the driver and can fail for its answer.
 *
 * Any thread of any process may call these functions. PALLEDInit and PALLEDTerm are the exception:
 * no other call of the same process may overlap them. The library calls them when a process
 * attaches and detaches. All functions but PALLEDInit and PALLEDIsGrLedOn wait for the named mutex
 * "DVLORQPAL_LED_MUTEX" for at most 2000 ms. If the wait takes longer, or if the mutex was
 * abandoned, this is traced, and the function goes on.
 *
 * For each PALScanType there are two REG_DWORD values under HKEY_LOCAL_MACHINE
 * "SOFTWARE\Dravonel\PAL". "IntGrLed", "TethGrLed", "BTGrLed" and "RFIDGrLed" hold the configured
 * state of the good-read LED. "IntGrLedOnDur", "TethGrLedOnDur", "BTGrLedOnDur" and
 * "RFIDGrLedOnDur" hold for how many milliseconds a toggle lights it. Steps and failures are traced
 * with facility 1004.
 */
#ifndef PALLED_H_
#define PALLED_H_

#include "palresult.h"
#include "paltypes.h"
#include "palvalues.h"

PAL_INTERFACE_BEGIN

/**
 * Creates or opens the mutex and the event "LED_ON_TIMEOUT" of this family.
 *
 * A further call in the same process keeps what the first has created. Without the event a toggle
 * always lasts its whole time.
 *
 * @retval S_OK  Done, also if the event could not be created.
 * @retval PAL_E_WIN32(error)  The error of creating the mutex. Handles of an earlier call stay in
 *               use.
 */
HRESULT PALAPI PALLEDInit(void);

/**
 * Closes the mutex and the event of this process.
 *
 * @retval S_OK          Closed.
 * @retval E_INVALIDARG  There was no mutex.
 */
HRESULT PALAPI PALLEDTerm(void);

/**
 * Turns the notification LED on.
 *
 * @retval S_OK          The LED is switched.
 * @retval E_INVALIDARG  There is no mutex (see PALLEDInit). The driver is not asked.
 */
HRESULT PALAPI PALLEDNotificationOn(void);
/** Turns the notification LED off. @like PALLEDNotificationOn */
HRESULT PALAPI PALLEDNotificationOff(void);
/** Turns the good-read LED on. @like PALLEDNotificationOn */
HRESULT PALAPI PALLEDGrLedOn(void);
/** Turns the good-read LED off. @like PALLEDNotificationOn */
HRESULT PALAPI PALLEDGrLedOff(void);
/** Turns the system light on. @like PALLEDNotificationOn */
HRESULT PALAPI PALLEDSysLightOn(void);
/** Turns the system light off. @like PALLEDNotificationOn */
HRESULT PALAPI PALLEDSysLightOff(void);

/**
 * Makes the system light blink, with the default times of its driver.
 * @like PALLEDNotificationOn
 */
HRESULT PALAPI PALLEDSysLightBlinkStart(void);
/** Turns the system light off. @like PALLEDNotificationOn */
HRESULT PALAPI PALLEDSysLightBlinkStop(void);

/**
 * Flashes the good-read LED: on for the time of the scan type, then off. Returns when it is off.
 *
 * Any process can end the flash early: it sets the event "LED_ON_TIMEOUT". If the event is set
 * already, the flash ends at once. Other requests wait while the LED is lit.
 *
 * @param scan_type  #PALScanType. The time is 250 ms if its value cannot be read or is 0xFFFFFFFF.
 *
 * @retval S_OK          Done, also if the flash was ended early.
 * @retval E_FAIL        @p scan_type is above 3. Nothing is done or traced.
 * @retval E_INVALIDARG  There is no mutex (see PALLEDInit). The driver is not asked.
 */
HRESULT PALAPI PALLEDGrLedToggle(DWORD scan_type);

/**
 * Gives the configured state of the good-read LED, as it is stored.
 *
 * @param scan_type   #PALScanType.
 * @param[out] state  Any number. Unchanged on failure. Not null.
 *
 * @retval S_OK          Answered.
 * @retval E_FAIL        @p scan_type is above 3, or @p state is null. Nothing is read or traced.
 * @retval E_INVALIDARG  There is no mutex (see PALLEDInit).
 * @retval PAL_E_WIN32(error)  The error of reading: PAL_E_FILE_NOT_FOUND if there is no such value.
 */
HRESULT PALAPI PALLEDGrLedGetState(DWORD scan_type, DWORD* state);

/**
 * Asks the driver whether the good-read LED is on. Uses no mutex, and does not need PALLEDInit.
 *
 * @retval S_OK    It is on.
 * @retval E_FAIL  It is off, it blinks, or the driver does not know it.
 */
HRESULT PALAPI PALLEDIsGrLedOn(void);

PAL_INTERFACE_END

#endif /* PALLED_H_ */
