/**
 * @file paldisp.h
 * @brief The display: brightness, keypad backlight, orientation, input panel, sound of a tap.
 * @family display
 *
 * The settings are REG_DWORD values of the current user, HKEY_CURRENT_USER "ControlPanel\...". The
 * backlight drivers and the input panel are not told of a change: they read the value the next time
 * that they need it. A setter needs the registry key to exist, unless it says something else. A
 * getter gives whatever number is stored. The display driver keeps the orientation.
 *
 * Any thread of any process may call these functions. They take no lock: of two changes at once the
 * later one stays. For a null out-pointer the result is E_FAIL, and nothing is read or traced. The
 * steps of every function are traced with facility 1006.
 */
#ifndef PALDISP_H_
#define PALDISP_H_

#include "palresult.h"
#include "paltypes.h"
#include "palvalues.h"

PAL_INTERFACE_BEGIN

/**
 * Does nothing: no function here needs it. The library calls it when a process attaches.
 * @retval S_OK  Always.
 */
HRESULT PALAPI PALDISPInit(void);

/** Does nothing. The library calls it when a process detaches. @retval S_OK  Always. */
HRESULT PALAPI PALDISPTerm(void);

/**
 * Sets the brightness of the display in ordinary light: the value "AmbientDeltaIndex" under
 * "Backlight".
 *
 * @param level  [level] 1 to 5.
 *
 * @retval S_OK    Stored.
 * @retval E_FAIL  The number is not allowed. Nothing was changed.
 * @retval PAL_DISP_E_WRITE_FAILED  The value cannot be written, for example because the key does
 *                 not exist.
 */
HRESULT PALAPI PALDISPSetDisplayBrightnessAmbient(DWORD level);

/**
 * Gives the brightness of the display in ordinary light.
 *
 * @param[out] level  [level] Any number, as it is stored. Unchanged on failure. Not null.
 *
 * @retval S_OK    Answered.
 * @retval E_FAIL  The out-pointer is null.
 * @retval PAL_E_WIN32(error)  The error of reading: PAL_E_FILE_NOT_FOUND if the value does not
 *                 exist, PAL_E_MORE_DATA if it has more than four bytes.
 */
HRESULT PALAPI PALDISPGetDisplayBrightnessAmbient(DWORD* level);

/**
 * Sets how much the brightness differs in low light: the value "AmbientDeltaIndexLow" under
 * "Backlight".
 * @like PALDISPSetDisplayBrightnessAmbient
 */
HRESULT PALAPI PALDISPSetLowLightDisplayBrightnessDelta(DWORD level);
/** Gives how much the brightness differs in low light. @like PALDISPGetDisplayBrightnessAmbient */
HRESULT PALAPI PALDISPGetLowLightDisplayBrightnessDelta(DWORD* level);

/**
 * Sets how much the brightness differs in bright light: the value "AmbientDeltaIndexHigh" under
 * "Backlight".
 * @like PALDISPSetDisplayBrightnessAmbient
 */
HRESULT PALAPI PALDISPSetBrightLightDisplayBrightnessDelta(DWORD level);

/**
 * Gives how much the brightness differs in bright light.
 * @like PALDISPGetDisplayBrightnessAmbient
 */
HRESULT PALAPI PALDISPGetBrightLightDisplayBrightnessDelta(DWORD* level);

/**
 * Sets what the backlight of the keypad does: the value "Mode" under "Backlight\Keyboard".
 *
 * @param mode  0, 2 or 4. The backlight driver gives these numbers their meaning.
 * @like PALDISPSetDisplayBrightnessAmbient
 */
HRESULT PALAPI PALDISPSetKeypadBacklightMode(DWORD mode);

/**
 * Gives what the backlight of the keypad does.
 *
 * @param[out] mode  Any number, as it is stored. Unchanged on failure. Not null.
 * @like PALDISPGetDisplayBrightnessAmbient
 */
HRESULT PALAPI PALDISPGetKeypadBacklightMode(DWORD* mode);

/**
 * Sets whether the backlight of the keypad depends on the light: the value "AmbientThreshold" under
 * "Backlight\Keyboard".
 *
 * @param threshold  0 or 1.
 * @like PALDISPSetDisplayBrightnessAmbient
 */
HRESULT PALAPI PALDISPSetKeypadBacklightAmbient(DWORD threshold);

/**
 * Gives whether the backlight of the keypad depends on the light.
 *
 * @param[out] threshold  Any number, as it is stored. Unchanged on failure. Not null.
 * @like PALDISPGetDisplayBrightnessAmbient
 */
HRESULT PALAPI PALDISPGetKeypadBacklightAmbient(DWORD* threshold);

/**
 * Turns the screen at once, and stores the angle as REG_DWORD "Angle" under HKEY_LOCAL_MACHINE
 * "System\GDI\Rotation".
 *
 * @param angle  [degrees] 0, 90, 180 or 270.
 *
 * @retval S_OK  Turned and stored.
 * @retval PAL_DISP_E_NO_SUCH_ORIENTATION  Another angle. Nothing was changed.
 * @retval PAL_DISP_E_CHANGE_REFUSED  The display driver refused. Nothing was changed.
 * @retval PAL_E_WIN32(error)  Turned but not stored, with the error of writing:
 *               PAL_E_FILE_NOT_FOUND if the key does not exist.
 */
HRESULT PALAPI PALDISPSetOrientation(LONG angle);

/**
 * Gives the orientation of the screen, as the display driver reports it.
 *
 * @param[out] angle  [degrees] 0, 90, 180 or 270. 0 also if the driver reports an orientation that
 *                    is not known. Unchanged on failure. Not null.
 *
 * @retval S_OK    Answered.
 * @retval E_FAIL  The display driver does not answer, or @p angle is null.
 */
HRESULT PALAPI PALDISPGetOrientation(LONG* angle);

/**
 * Sets how the input panel is docked: the value "DragStyle" under "SIP". The key is created if it
 * does not exist.
 *
 * @param style  Any number. The input panel gives it its meaning.
 *
 * @retval S_OK  Stored.
 * @retval PAL_E_WIN32(error)  The error of creating the key or of writing the value.
 */
HRESULT PALAPI PALDISPSetSIPDock(DWORD style);

/**
 * Gives how the input panel is docked.
 *
 * @param[out] style  Any number, as it is stored. 0 on failure. Not null.
 *
 * @retval S_OK    Answered.
 * @retval E_FAIL  @p style is null.
 * @retval PAL_E_WIN32(error)  The error of reading: PAL_E_FILE_NOT_FOUND if the key or the value
 *                 does not exist.
 */
HRESULT PALAPI PALDISPGetSIPDock(DWORD* style);

/**
 * Sets how loud a tap on the screen sounds: the value "Screen" under "Volume". Then tells the audio
 * driver to read its settings again.
 *
 * @param level  [level] #PALTapVolume.
 *
 * @retval S_OK    Stored, and the audio driver was told.
 * @retval E_FAIL  Another level, and nothing was changed. Or stored, but the audio driver cannot be
 *                 told.
 * @retval PAL_E_WIN32(error)  Not stored, with the error of writing: PAL_E_FILE_NOT_FOUND if the
 *                 key does not exist.
 */
HRESULT PALAPI PALDISPSetScreenTapVol(DWORD level);

/**
 * Gives how loud a tap on the screen sounds.
 *
 * @param[out] level  [level] #PALTapVolume. A stored 0x10000 counts as 0. Any other stored number
 *                    is given as it is. Unchanged on failure. Not null.
 *
 * @retval S_OK    Answered.
 * @retval E_FAIL  @p level is null.
 * @retval PAL_E_WIN32(error)  The error of reading: PAL_E_FILE_NOT_FOUND if the value does not
 *                 exist.
 */
HRESULT PALAPI PALDISPGetScreenTapVol(DWORD* level);

PAL_INTERFACE_END

#endif /* PALDISP_H_ */
