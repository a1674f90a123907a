/**
 * @file paldisp.h
 * @brief Display: brightness, keypad backlight, orientation, input panel, clicks of the screen.
 *
 * The settings are REG_DWORD values of the current user, HKEY_CURRENT_USER "ControlPanel\...". The
 * backlight drivers and the input panel read them when they next look: no event tells them. Setters
 * need the key to exist where they say nothing else; getters answer whatever is stored. The
 * orientation is the display driver's.
 *
 * The functions here may be called from any thread of any process and take no lock: of two changes
 * at once the later one stands. A null out-pointer gives E_FAIL, and nothing is read or traced. The
 * steps of every function are traced with facility 1006.
 */
#ifndef PALDISP_H_
#define PALDISP_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/**
 * Prepares the family. The library's entry calls it when a process attaches; no function here needs
 * it.
 * @retval S_OK always
 */
HRESULT PALAPI PALDISPInit(void);

/**
 * Ends the family. The library's entry calls it when a process detaches.
 * @retval S_OK always
 */
HRESULT PALAPI PALDISPTerm(void);

/**
 * How bright the display is in the light around it: "Backlight", value "AmbientDeltaIndex".
 *
 * @param level 1 to 5
 *
 * @retval S_OK       stored
 * @retval E_FAIL     another level; nothing was changed
 * @retval PAL_DISP_E_WRITE_FAILED it cannot be written, whatever the reason: the key is missing,
 * for example
 */
HRESULT PALAPI PALDISPSetDisplayBrightnessAmbient(DWORD level);

/**
 * Reads what PALDISPSetDisplayBrightnessAmbient stores.
 *
 * @param[out] level any number, as it is stored. Not null; not written on failure
 *
 * @retval S_OK       answered
 * @retval E_FAIL     @p level is null
 * @retval PAL_E_WIN32(error) the system error of the registry: PAL_E_FILE_NOT_FOUND where the value
 * is missing, PAL_E_MORE_DATA where it has more than four bytes
 */
HRESULT PALAPI PALDISPGetDisplayBrightnessAmbient(DWORD* level);

/**
 * How much it differs from that in low light: "Backlight", value "AmbientDeltaIndexLow".
 * @param level 1 to 5
 * @retval S_OK stored; failures as for PALDISPSetDisplayBrightnessAmbient
 */
HRESULT PALAPI PALDISPSetLowLightDisplayBrightnessDelta(DWORD level);

/** Reads it, as PALDISPGetDisplayBrightnessAmbient does. */
HRESULT PALAPI PALDISPGetLowLightDisplayBrightnessDelta(DWORD* level);

/**
 * How much it differs from that in bright light: "Backlight", value "AmbientDeltaIndexHigh".
 * @param level 1 to 5
 * @retval S_OK stored; failures as for PALDISPSetDisplayBrightnessAmbient
 */
HRESULT PALAPI PALDISPSetBrightLightDisplayBrightnessDelta(DWORD level);

/** Reads it, as PALDISPGetDisplayBrightnessAmbient does. */
HRESULT PALAPI PALDISPGetBrightLightDisplayBrightnessDelta(DWORD* level);

/**
 * What the keypad's backlight does: "Backlight\Keyboard", value "Mode".
 * @param mode 0, 2 or 4; their meaning is the backlight driver's
 * @retval S_OK stored; failures as for PALDISPSetDisplayBrightnessAmbient
 */
HRESULT PALAPI PALDISPSetKeypadBacklightMode(DWORD mode);

/**
 * Reads it, as PALDISPGetDisplayBrightnessAmbient does.
 * @param[out] mode any number, as it is stored. Not null; not written on failure
 */
HRESULT PALAPI PALDISPGetKeypadBacklightMode(DWORD* mode);

/**
 * Whether the keypad's backlight heeds the light around it: "Backlight\Keyboard", value
 * "AmbientThreshold".
 * @param threshold 0 or 1
 * @retval S_OK stored; failures as for PALDISPSetDisplayBrightnessAmbient
 */
HRESULT PALAPI PALDISPSetKeypadBacklightAmbient(DWORD threshold);

/**
 * Reads it, as PALDISPGetDisplayBrightnessAmbient does.
 * @param[out] threshold any number, as it is stored. Not null; not written on failure
 */
HRESULT PALAPI PALDISPGetKeypadBacklightAmbient(DWORD* threshold);

/**
 * Turns the screen now, and stores the angle as REG_DWORD "Angle" under HKEY_LOCAL_MACHINE
 * "System\GDI\Rotation".
 *
 * @param angle 0, 90, 180 or 270 degrees
 *
 * @retval S_OK       turned and stored
 * @retval PAL_DISP_E_NO_SUCH_ORIENTATION another angle; nothing was changed
 * @retval PAL_DISP_E_CHANGE_REFUSED the display driver refused; screen and registry are as they
 * were
 * @retval PAL_E_WIN32(error) turned, but not stored: the system error of the registry,
 * PAL_E_FILE_NOT_FOUND where the key is missing
 */
HRESULT PALAPI PALDISPSetOrientation(LONG angle);

/**
 * How the screen is turned, as the display driver says.
 *
 * @param[out] angle 0, 90, 180 or 270 degrees; 0 also where the driver gives no known orientation.
 *                   Not null; not written on failure
 *
 * @retval S_OK   answered
 * @retval E_FAIL the display driver does not answer, or @p angle is null
 */
HRESULT PALAPI PALDISPGetOrientation(LONG* angle);

/**
 * How the input panel is docked: "SIP", value "DragStyle". The key is created where it is missing.
 *
 * @param style any number; its meaning is the input panel's
 *
 * @retval S_OK       stored
 * @retval PAL_E_WIN32(error) the system error of creating the key or of writing the value
 */
HRESULT PALAPI PALDISPSetSIPDock(DWORD style);

/**
 * Reads how the input panel is docked.
 *
 * @param[out] style any number, as it is stored; 0 on failure. Not null
 *
 * @retval S_OK       answered
 * @retval E_FAIL     @p style is null
 * @retval PAL_E_WIN32(error) the system error of the registry: PAL_E_FILE_NOT_FOUND where key or
 * value are missing
 */
HRESULT PALAPI PALDISPGetSIPDock(DWORD* style);

/**
 * How loud a tap on the screen clicks: "Volume", value "Screen". Level 2 is stored as 0x10002. The
 * audio driver is then told to read its settings.
 *
 * @param level 0 (silent), 1 or 2 (loud)
 *
 * @retval S_OK       stored, and the audio driver was told
 * @retval E_FAIL     another level, and nothing was changed; or stored, but the audio driver cannot
 *                    be told
 * @retval PAL_E_WIN32(error) the system error of the registry, and nothing was stored:
 * PAL_E_FILE_NOT_FOUND where the key is missing
 */
HRESULT PALAPI PALDISPSetScreenTapVol(DWORD level);

/**
 * Reads how loud a tap on the screen clicks.
 *
 * @param[out] level 0, 1 or 2; what is stored otherwise is given as it is, but 0x10000 as 0. Not
 *                   null; not written on failure
 *
 * @retval S_OK       answered
 * @retval E_FAIL     @p level is null
 * @retval PAL_E_WIN32(error) the system error of the registry: PAL_E_FILE_NOT_FOUND where the value
 * is missing
 */
HRESULT PALAPI PALDISPGetScreenTapVol(DWORD* level);

PAL_INTERFACE_END

#endif /* PALDISP_H_ */
