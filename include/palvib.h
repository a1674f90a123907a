/**
 * @file palvib.h
 * @brief The vibrator.
 *
 * A vibration is one request to the notification-LED driver that names a preset, a pattern that the
 * driver knows, in place of an LED. Which of the nine presets is used is the REG_DWORD
 * "VibratePresetIndex" under HKEY_LOCAL_MACHINE "SOFTWARE\Dravonel\PAL": one choice for the whole
 * device. Without the value the device does not vibrate.
 *
 * The functions here may be called from any thread of any process. They take no lock and keep
 * nothing between calls. Steps and failures are traced with facility 1015.
 */
#ifndef PALVIB_H_
#define PALVIB_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/**
 * Does nothing; the vibrator needs no preparation.
 * @retval S_OK always
 */
HRESULT PALAPI PALVIBInit(void);

/**
 * Looks for a vibrator among the LED numbers 0 to 9, up to the first that is one.
 *
 * A device without a vibrator whose driver knows all ten numbers answers S_OK too, on purpose:
 * callers rely on it.
 *
 * @retval S_OK    there is a vibrator, or no query failed
 * @retval E_FAIL  no vibrator was found, and the driver failed to answer for at least one number
 */
HRESULT PALAPI PALVIBIsInstalled(void);

/**
 * Chooses the preset of all vibrations to come.
 *
 * @param preset  1 to 9. Any other number is stored as well, and then refused by PALVIBVibrate.
 *
 * @retval S_OK        stored
 * @retval PAL_E_WIN32(error)  the error of opening the key or writing the value:
 * PAL_E_FILE_NOT_FOUND where the key does not exist
 */
HRESULT PALAPI PALVIBSetVibratePreset(DWORD preset);

/**
 * Gives the preset as it is stored.
 *
 * @param[out] preset  Any number; unchanged on failure. Not null.
 *
 * @retval S_OK        answered
 * @retval E_FAIL      @p preset is null; nothing is read or traced
 * @retval PAL_E_WIN32(error)  the error of opening the key or reading the value:
 * PAL_E_FILE_NOT_FOUND where there is none
 */
HRESULT PALAPI PALVIBGetVibratePreset(DWORD* preset);

/**
 * Vibrates once with the chosen preset. Does not wait for the vibration's end.
 *
 * @param ignored  Has no effect.
 *
 * @retval S_OK        the driver has taken the request
 * @retval E_FAIL      the driver refused it, or the preset is not one of 1 to 9
 * @retval PAL_E_WIN32(error)  the error of reading the preset: PAL_E_FILE_NOT_FOUND where none is
 * chosen. The driver is not asked.
 */
HRESULT PALAPI PALVIBVibrate(DWORD ignored);
/** The same function as PALVIBVibrate, under its second name. */
HRESULT PALAPI PALVIBVibrateEx(DWORD ignored);

PAL_INTERFACE_END

#endif /* PALVIB_H_ */
