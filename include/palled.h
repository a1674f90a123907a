/**
 * @file palled.h
 * @brief The LEDs: notification LED, good-read LED and system light.
 *
 * They are LEDs 0, 3 and 6 of the notification-LED driver, which keeps their state. What the driver
 * refuses counts as done already: no function fails for it.
 *
 * The functions here may be called from any thread of any process, but for PALLEDInit and
 * PALLEDTerm, which no other call of the same process may overlap; the library calls them when a
 * process attaches and detaches. All but PALLEDInit and PALLEDIsGrLedOn wait for the named mutex
 * "DVLORQPAL_LED_MUTEX", at most 2000 ms. A wait that takes longer, or finds the mutex abandoned,
 * is traced, and the function goes on.
 *
 * For each scan type (0 internal scanner, 1 tethered scanner, 2 Bluetooth scanner, 3 RFID reader)
 * there are two REG_DWORD values under HKEY_LOCAL_MACHINE "SOFTWARE\Dravonel\PAL": "IntGrLed",
 * "TethGrLed", "BTGrLed" and "RFIDGrLed" hold the configured state of the good-read LED,
 * "IntGrLedOnDur", "TethGrLedOnDur", "BTGrLedOnDur" and "RFIDGrLedOnDur" for how many milliseconds
 * a toggle lights it.
 *
 * Steps and failures are traced with facility 1004.
 */
#ifndef PALLED_H_
#define PALLED_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/**
 * Creates or opens the mutex and the event "LED_ON_TIMEOUT" of this family.
 *
 * A call in a process that has them already keeps what there is. Without the event a toggle lasts
 * its whole time.
 *
 * @retval S_OK        done, also where the event could not be created
 * @retval PAL_E_WIN32(error)  the error of creating the mutex; handles of an earlier call stay in
 * use
 */
HRESULT PALAPI PALLEDInit(void);

/**
 * Closes the mutex and the event of this process.
 *
 * @retval S_OK          closed
 * @retval E_INVALIDARG  there was no mutex
 */
HRESULT PALAPI PALLEDTerm(void);

/**
 * Turns the notification LED on.
 *
 * @retval S_OK          it is on
 * @retval E_INVALIDARG  PALLEDInit has not made the mutex; the driver is not asked
 */
HRESULT PALAPI PALLEDNotificationOn(void);
/** Turns the notification LED off. Results as PALLEDNotificationOn. */
HRESULT PALAPI PALLEDNotificationOff(void);
/** Turns the good-read LED on. Results as PALLEDNotificationOn. */
HRESULT PALAPI PALLEDGrLedOn(void);
/** Turns the good-read LED off. Results as PALLEDNotificationOn. */
HRESULT PALAPI PALLEDGrLedOff(void);
/** Turns the system light on. Results as PALLEDNotificationOn. */
HRESULT PALAPI PALLEDSysLightOn(void);
/** Turns the system light off. Results as PALLEDNotificationOn. */
HRESULT PALAPI PALLEDSysLightOff(void);
/** Lets the system light blink as its driver does by default. Results as PALLEDNotificationOn. */
HRESULT PALAPI PALLEDSysLightBlinkStart(void);
/** Turns the system light off. Results as PALLEDNotificationOn. */
HRESULT PALAPI PALLEDSysLightBlinkStop(void);

/**
 * Flashes the good-read LED: on for the scan type's time, then off. Returns when it is off.
 *
 * The event "LED_ON_TIMEOUT", set from anywhere in the system, ends the flash; one that is set
 * already ends it at once. Other requests wait behind a flash.
 *
 * @param scan_type  0 to 3. The time is 250 ms where its value cannot be read or is 0xFFFFFFFF.
 *
 * @retval S_OK          done, also where the flash was ended early
 * @retval E_FAIL        @p scan_type is above 3; nothing is done or traced
 * @retval E_INVALIDARG  PALLEDInit has not made the mutex; the driver is not asked
 */
HRESULT PALAPI PALLEDGrLedToggle(DWORD scan_type);

/**
 * Gives the configured state of the good-read LED, as it is stored.
 *
 * @param scan_type   0 to 3.
 * @param[out] state  Any number; unchanged on failure. Not null.
 *
 * @retval S_OK          answered
 * @retval E_FAIL        @p scan_type is above 3 or @p state is null; nothing is read or traced
 * @retval E_INVALIDARG  PALLEDInit has not made the mutex
 * @retval PAL_E_WIN32(error)    the error of opening the key or reading the value:
 * PAL_E_FILE_NOT_FOUND where there is none
 */
HRESULT PALAPI PALLEDGrLedGetState(DWORD scan_type, DWORD* state);

/**
 * Asks the driver whether the good-read LED is on. Takes no mutex, and needs no PALLEDInit.
 *
 * @retval S_OK    it is on
 * @retval E_FAIL  it is off, blinks, or the driver does not know it
 */
HRESULT PALAPI PALLEDIsGrLedOn(void);

PAL_INTERFACE_END

#endif /* PALLED_H_ */
