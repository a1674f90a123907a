/**
 * @file palkey.h
 * @brief The keypad: actions of the buttons, shift keys, control keys, sound of a key.
 * @family keypad
 *
 * The keypad driver reads its behaviour from the registry, under HKEY_LOCAL_MACHINE. The text
 * "CurrentActiveLayoutKey" under "Hardware\Devicemap\Keybd" is the path of the active layout. It
 * has at most 260 characters. A layout consists of:
 *
 * - the binary values "ShiftPlane0" to "ShiftPlane2", with a record of six bytes for each key;
 * - the keys "EVENTS\DELTA" and "EVENTS\STATE". Their values "Event1" to "Event7" name the events
 *   that the driver signals: on each change of a button, and for as long as it is held;
 * - the key "ShiftKeys" with the shift keys.
 *
 * The button of the handle has a layout of its own, "Software\Dravonel\RFIDServer\Keybd".
 *
 * After a change the driver's key "Drivers\HID\ClientDrivers\DVLKeyboard" is flushed, and the named
 * event "DVL_KEYBOARD_CHANGE_USB" tells the driver to read its settings again.
 *
 * Any thread of any process may call these functions. Nothing is kept between calls: if the driver
 * switches to another layout, the next call uses it. No lock is taken: programs that set actions at
 * the same time must take turns. Steps and failures are traced with facility 1005.
 */
#ifndef PALKEY_H_
#define PALKEY_H_

#include "palresult.h"
#include "paltypes.h"
#include "palvalues.h"

PAL_INTERFACE_BEGIN

/** Buttons have the numbers 0 to 7. */
#define PAL_KEY_BUTTON_COUNT 8

/** The room that PALKEYGetButtonName expects in its buffer, in bytes. */
#define PAL_KEY_BUTTON_NAME_LENGTH 18

/** The programmable buttons. No device has a button 1 or 4. */
typedef enum PALButton {
  /** The button of the handle. */
  PAL_BUTTON_HANDLE = 0,
  /** The lower button on the left side. */
  PAL_BUTTON_LEFT_SIDE_BOTTOM = 2,
  /** The button in the middle. */
  PAL_BUTTON_MIDDLE = 3,
  /** The upper button on the left side. An ordinary key unless it has an action. */
  PAL_BUTTON_LEFT_SIDE_TOP = 5,
  /** The upper button on the right side. An ordinary key unless it has an action. */
  PAL_BUTTON_RIGHT_SIDE_TOP = 6,
  /** The lower button on the right side. An ordinary key unless it has an action. */
  PAL_BUTTON_RIGHT_SIDE_BOTTOM = 7
} PALButton;

/** What a button does: which events the driver signals for it. */
typedef enum PALKeyAction {
  /** Starts a scan. */
  PAL_KEY_ACTION_SCAN = 1,
  /** Pulls the trigger of the RFID reader. */
  PAL_KEY_ACTION_RFID_TRIGGER = 2,
  /** Signals the event of the RFID reader for the position of the button. */
  PAL_KEY_ACTION_RFID_POSITION = 3,
  /** Starts a scan with the camera. */
  PAL_KEY_ACTION_CAMERA_SCAN = 4,
  /** Switches the flashlight. */
  PAL_KEY_ACTION_FLASHLIGHT = 5,
  /** Acts as an ordinary key. */
  PAL_KEY_ACTION_WINDOWS_DEFAULT = 6,
  /** Signals the maker's trigger event. */
  PAL_KEY_ACTION_OEM_TRIGGER = 7,
  /** The action is not known. Only an answer. */
  PAL_KEY_ACTION_UNKNOWN = 255
} PALKeyAction;

/** What the shift keys of a layout do. */
typedef enum PALShiftBehavior {
  /** Bit 0 of the first byte of each shift key is set. */
  PAL_SHIFT_BEHAVIOR_0 = 0,
  /** Bit 1 is set, and bit 0 is not. */
  PAL_SHIFT_BEHAVIOR_1 = 1,
  /** Bit 2 is set, and bits 0 and 1 are not. */
  PAL_SHIFT_BEHAVIOR_2 = 2,
  /** The shift keys differ, or have none of the three bits. Only an answer. */
  PAL_SHIFT_BEHAVIOR_MIXED = 3,
  /** The shift keys cannot be listed. Only an answer. */
  PAL_SHIFT_BEHAVIOR_UNREADABLE = -1
} PALShiftBehavior;

/** The control keys. Each has one or two DWORD values under "Hardware\DeviceMap\Keybd". */
typedef enum PALControlKey {
  /** "VolumeKeyEnable". */
  PAL_CONTROL_KEY_VOLUME = 0,
  /** "ContrastKeyEnable" and "HighContrastKeyEnable". */
  PAL_CONTROL_KEY_CONTRAST = 1,
  /** "BacklightKeyEnable". */
  PAL_CONTROL_KEY_BACKLIGHT = 2,
  /** "AltTabEnable". */
  PAL_CONTROL_KEY_ALT_TAB = 3
} PALControlKey;

/**
 * Repairs the layout of the buttons once in the life of a device. The library calls it when a
 * process attaches.
 *
 * Buttons 5, 6 and 7 get the action PAL_KEY_ACTION_WINDOWS_DEFAULT. Button 2 gets
 * PAL_KEY_ACTION_SCAN, or PAL_KEY_ACTION_CAMERA_SCAN on the model "RM23", and its records in all
 * three planes are rewritten. Then the driver is told. The DWORD "FixActive" under
 * HKEY_LOCAL_MACHINE "Software\Dravonel\PAL" becomes 1, even if the repair failed halfway, and the
 * repair is not made again. To learn the model, it also traces with facility 1039.
 *
 * @retval S_OK  Always.
 */
HRESULT PALAPI PALKEYInit(void);

/** Does nothing. The library calls it when a process detaches. @retval S_OK  Always. */
HRESULT PALAPI PALKEYTerm(void);

/**
 * Tells how many numbers of buttons there are, supported or not.
 *
 * @param[out] count  Always 8. Not null.
 *
 * @retval S_OK    Answered.
 * @retval E_FAIL  @p count is null.
 */
HRESULT PALAPI PALKEYGetNumButtons(DWORD* count);

/**
 * Gives the name of a button, such as "Left Side Top".
 *
 * A button is supported if plane 0 of the active layout has a record of kind 7 with the scan code
 * of the button. This holds for the handle too. No button is supported if plane 0 has more than
 * 1024 bytes, or if the path of the layout does not exist, is empty, cannot be read or has more
 * than 260 characters. Buttons 1 and 4 are never supported.
 *
 * @param button       #PALButton.
 * @param[out] name    Room for 18 bytes (PAL_KEY_BUTTON_NAME_LENGTH). Receives the 8-bit text with
 *                     its terminator. Unchanged on failure. Not null.
 * @param[out] length  [bytes] The length of the text without its terminator. Unchanged on failure.
 *                     Not null.
 *
 * @retval S_OK    Answered.
 * @retval PAL_KEY_E_NOT_SUPPORTED  The button is not supported, or there is no such number.
 * @retval E_FAIL  @p name or @p length is null.
 */
HRESULT PALAPI PALKEYGetButtonName(LONG button, char* name, DWORD* length);

/**
 * Tells what a button does: reads its event names under "EVENTS\DELTA" and "EVENTS\STATE".
 *
 * For buttons 5, 6 and 7 a value that does not exist or has more than 512 bytes means
 * PAL_KEY_ACTION_WINDOWS_DEFAULT. The scan events of the right-hand side count as
 * PAL_KEY_ACTION_SCAN. Upper and lower case of the names matter.
 *
 * @param button       #PALButton.
 * @param[out] action  #PALKeyAction. PAL_KEY_ACTION_UNKNOWN on every failure. Also with S_OK, if an
 *                     event's key or value does not exist, if its name belongs to no action, or if
 *                     the two names belong to different actions. Not null.
 *
 * @retval S_OK    Answered.
 * @retval PAL_KEY_E_NOT_SUPPORTED  The button is not supported (see PALKEYGetButtonName).
 * @retval E_FAIL  @p action is null. Or the path of the active layout can no longer be read after
 *                 the button was found in it.
 */
HRESULT PALAPI PALKEYGetButtonAction(LONG button, DWORD* action);

/**
 * Sets what a button does, and tells the driver. A change of the handle, button 0, is not told.
 *
 * Writes the two event names of the action, as texts without a terminator. Buttons 5, 6 and 7 also
 * have a record in each of the three planes:
 *
 * - If the action was PAL_KEY_ACTION_WINDOWS_DEFAULT, the records are saved under
 *   HKEY_LOCAL_MACHINE "Software\Dravonel\PAL" and then rewritten to signal the button's event.
 * - If the new action is PAL_KEY_ACTION_WINDOWS_DEFAULT, the saved records are written back. The
 *   saved copy stays.
 * - A plane that has no record of the button, or cannot be read, is left out. So is a plane whose
 *   record was never saved, or cannot be saved because the key of the saved records does not open
 *   or has no room. A plane of 4096 bytes or more cannot be read.
 * - A write to the registry that fails is not noticed. A record that was to be saved then is
 *   rewritten all the same, and the original is lost.
 *
 * A call that fails, or whose process ends, can leave a part of the change written: records saved
 * and rewritten, or the name under "EVENTS\DELTA" without the one under "EVENTS\STATE". The same
 * call made again completes it. A record that such a call has rewritten already is not saved over
 * the original.
 *
 * These failures are not reported: any in the planes 0 and 1; a plane 2 that the layout does not
 * have or that has 4096 bytes or more; a saved plane with no room for a further record; a plane or
 * a name under "EVENTS\STATE" that cannot be written.
 *
 * @param button  #PALButton.
 * @param action  #PALKeyAction, 1 to 7.
 *
 * @retval S_OK  Done.
 * @retval PAL_KEY_E_NO_SUCH_ACTION  @p action is not 1 to 7. Nothing was changed.
 * @retval PAL_KEY_E_NOT_SUPPORTED   The button is not supported (see PALKEYGetButtonName). Nothing
 *               was changed.
 * @retval E_FAIL  "EVENTS\DELTA" or "EVENTS\STATE" cannot be opened. Or the name under
 *               "EVENTS\DELTA" cannot be written. Or, for plane 2, the key of the layout or of the
 *               saved records cannot be opened, or the saved plane cannot be read. Or the driver's
 *               key cannot be opened, and the driver is not told.
 */
HRESULT PALAPI PALKEYSetButtonAction(LONG button, LONG action);

/**
 * Enables or disables a control key. If the first of its two values cannot be written, the second
 * is written all the same.
 *
 * @param key    #PALControlKey.
 * @param state  0 disables. Any other number enables, and is written as 1.
 *
 * @retval S_OK  The last value of the key is written.
 * @retval PAL_KEY_E_NO_SUCH_CONTROL_KEY  There is no such control key. Nothing was written.
 * @retval PAL_E_WIN32(error)  The error of writing the last value: PAL_E_FILE_NOT_FOUND if the
 *               registry key does not exist.
 */
HRESULT PALAPI PALKEYControlKeyState(LONG key, DWORD state);

/**
 * Tells what the shift keys of the active layout do.
 *
 * A shift key is a binary value of four bytes under "ShiftKeys" whose name begins with "ShiftKey",
 * in any case. Other values are ignored. At most 65,536 values are looked at.
 *
 * @param[out] behavior  #PALShiftBehavior. PAL_SHIFT_BEHAVIOR_0 also if there is no shift key.
 *                       PAL_SHIFT_BEHAVIOR_UNREADABLE if the values cannot be listed. Unchanged on
 *                       every other failure. Not null.
 *
 * @retval S_OK    Answered.
 * @retval E_FAIL  @p behavior is null.
 * @retval PAL_E_MORE_DATA  The path of the layout has more than 260 characters, or there are more
 *                 than 65,536 values.
 * @retval PAL_E_WIN32(error)  The error of opening "Hardware\Devicemap\Keybd", of reading the path
 *                 of the layout, of opening "ShiftKeys" or of listing its values.
 *                 PAL_E_FILE_NOT_FOUND if one of these does not exist.
 */
HRESULT PALAPI PALKEYGetShiftBehavior(DWORD* behavior);

/**
 * Sets what the shift keys of the active layout do: all of them do the same. The low three bits of
 * the first byte of each shift key change. The driver is not told.
 *
 * @param behavior  #PALShiftBehavior, 0 to 2.
 *
 * @retval S_OK          Every shift key that could be listed is written.
 * @retval E_INVALIDARG  @p behavior is above 2. Nothing was changed.
 * @retval PAL_E_WIN32(error)  The error of opening "Hardware\Devicemap\Keybd", of reading the path
 *                       of the layout, or of opening "ShiftKeys": PAL_E_FILE_NOT_FOUND if one of
 *                       these does not exist. Or the error of writing a shift key; those after it
 *                       are not changed.
 */
HRESULT PALAPI PALKEYSetShiftBehavior(DWORD behavior);

/**
 * Sets how loud a key sounds: the DWORD "Key" under HKEY_CURRENT_USER "ControlPanel\Volume". Then
 * tells the audio driver to read its settings again. The lines of this function are traced with
 * facility 1005; those about the audio driver with facility 1006.
 * @like PALDISPSetScreenTapVol
 */
HRESULT PALAPI PALKEYSetKeyTapVol(DWORD level);
/** Tells how loud a key sounds. @like PALDISPGetScreenTapVol */
HRESULT PALAPI PALKEYGetKeyTapVol(DWORD* level);

/**
 * Tells which keyboard the device has: the non-volatile parameter 0x35, by kernel control
 * 0x010122C4.
 *
 * @param[out] type  The parameter as it is. 0 if it cannot be read or holds no byte. Not null.
 *
 * @retval S_OK    Answered.
 * @retval E_FAIL  @p type is null.
 */
HRESULT PALAPI PALKEYGetType(DWORD* type);

PAL_INTERFACE_END

#endif /* PALKEY_H_ */
