/**
 * @file palvib.h
 * @brief The vibrator.
 * @family feedback
 *
 * The notification-LED driver makes a vibration: the request names a preset in place of an LED. A
 * preset is a pattern that the driver knows. The REG_DWORD "VibratePresetIndex" under
 * HKEY_LOCAL_MACHINE "SOFTWARE\Dravonel\PAL" is the number of the preset for the whole device.
 * Without this value the device does not vibrate.
 *
 * Any thread of any process may call these functions. They take no lock, and keep nothing between
 * calls. Steps and failures are traced with facility 1015.
 */
#ifndef PALVIB_H_
#define PALVIB_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/** Does nothing: the vibrator needs no preparation. @retval S_OK  Always. */
HRESULT PALAPI PALVIBInit(void);

/**
 * Looks for a vibrator among the LED numbers 0 to 9, up to the first that is one.
 *
 * A device without a vibrator gets S_OK too if its driver knows all ten numbers. Callers depend on
 * this.
 *
 * @retval S_OK    There is a vibrator, or no query failed.
 * @retval E_FAIL  There is none, and the driver did not answer for at least one number.
 */
HRESULT PALAPI PALVIBIsInstalled(void);

/**
 * Chooses the preset of all later vibrations.
 *
 * @param preset  1 to 9. Any other number is stored too, and PALVIBVibrate then fails.
 *
 * @retval S_OK  Stored.
 * @retval PAL_E_WIN32(error)  The error of writing: PAL_E_FILE_NOT_FOUND if the key does not exist.
 */
HRESULT PALAPI PALVIBSetVibratePreset(DWORD preset);

/**
 * Gives the preset, as it is stored.
 *
 * @param[out] preset  Any number. Unchanged on failure. Not null.
 *
 * @retval S_OK    Answered.
 * @retval E_FAIL  @p preset is null. Nothing is read or traced.
 * @retval PAL_E_WIN32(error)  The error of reading: PAL_E_FILE_NOT_FOUND if there is none.
 */
HRESULT PALAPI PALVIBGetVibratePreset(DWORD* preset);

/**
 * Vibrates once with the chosen preset. Does not wait for the end of the vibration.
 *
 * @param ignored  Has no effect.
 *
 * @retval S_OK    The driver has taken the request.
 * @retval E_FAIL  The driver refused it, or the preset is not 1 to 9.
 * @retval PAL_E_WIN32(error)  The error of reading the preset: PAL_E_FILE_NOT_FOUND if none is
 *                 chosen. The driver is not asked.
 */
HRESULT PALAPI PALVIBVibrate(DWORD ignored);
/** The second name of PALVIBVibrate. @like PALVIBVibrate */
HRESULT PALAPI PALVIBVibrateEx(DWORD ignored);

PAL_INTERFACE_END

#endif /* PALVIB_H_ */
