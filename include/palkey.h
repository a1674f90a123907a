/**
 * @file palkey.h
 * @brief The keypad: what the programmable buttons do, shift keys, control keys, the click of a
 * key.
 *
 * The keypad driver takes its behaviour from the registry, under HKEY_LOCAL_MACHINE. The text
 * "CurrentActiveLayoutKey" under "Hardware\Devicemap\Keybd" is the path of the active layout, of at
 * most 260 characters. A layout has the binary values "ShiftPlane0" to "ShiftPlane2", with a record
 * of six bytes for each key, and keys below it: "EVENTS\DELTA" and "EVENTS\STATE" have the names of
 * the events that the driver signals for the values "Event1" to "Event7", on each change of a
 * button and for as long as it is held; "ShiftKeys" has the shift keys. The handle's button has a
 * layout of its own, "Software\Dravonel\RFIDServer\Keybd".
 *
 * The driver is told of a change through the named event "DVL_KEYBOARD_CHANGE_USB", once its key
 * "Drivers\HID\ClientDrivers\DVLKeyboard" has been flushed.
 *
 * Any thread of any process may call. Nothing is kept between calls: a layout that the driver
 * switches to is seen by the next call. No lock is taken: programs that set actions at the same
 * time have to take turns. Everything is traced with facility 1005.
 */
#ifndef PALKEY_H_
#define PALKEY_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/** Buttons have the numbers 0 to 7. */
#define PAL_KEY_BUTTON_COUNT 8

/** The room that PALKEYGetButtonName takes its buffer to have, in bytes. */
#define PAL_KEY_BUTTON_NAME_LENGTH 18

/** What a button does: the events that are signalled for it. */
typedef enum PALKeyAction {
  /** Starts a scan. */
  PAL_KEY_ACTION_SCAN = 1,
  /** Pulls the trigger of the RFID reader. */
  PAL_KEY_ACTION_RFID_TRIGGER = 2,
  /** Signals the RFID reader's event for the button's position. */
  PAL_KEY_ACTION_RFID_POSITION = 3,
  /** Starts a scan with the camera. */
  PAL_KEY_ACTION_CAMERA_SCAN = 4,
  /** Switches the flashlight. */
  PAL_KEY_ACTION_FLASHLIGHT = 5,
  /** Is the ordinary key that it is. */
  PAL_KEY_ACTION_WINDOWS_DEFAULT = 6,
  /** Signals the maker's trigger event. */
  PAL_KEY_ACTION_OEM_TRIGGER = 7,
  /** Cannot be told; only ever an answer. */
  PAL_KEY_ACTION_UNKNOWN = 255
} PALKeyAction;

/** What the shift keys of a layout do. Only ever an answer: PAL_SHIFT_BEHAVIOR_MIXED. */
typedef enum PALShiftBehavior {
  /** Bit value 1 of the first byte of each shift key's value. */
  PAL_SHIFT_BEHAVIOR_0 = 0,
  /** Bit value 2. */
  PAL_SHIFT_BEHAVIOR_1 = 1,
  /** Bit value 4. */
  PAL_SHIFT_BEHAVIOR_2 = 2,
  /** The shift keys differ, or have none of the three bits. */
  PAL_SHIFT_BEHAVIOR_MIXED = 3
} PALShiftBehavior;

/** The control keys of PALKEYControlKeyState. */
typedef enum PALControlKey {
  PAL_CONTROL_KEY_VOLUME = 0,
  PAL_CONTROL_KEY_CONTRAST = 1,
  PAL_CONTROL_KEY_BACKLIGHT = 2,
  PAL_CONTROL_KEY_ALT_TAB = 3
} PALControlKey;

/**
 * Starts the family; runs when a process attaches.
 *
 * Repairs the layout of the buttons once in the life of a device: buttons 5, 6 and 7 get the action
 * PAL_KEY_ACTION_WINDOWS_DEFAULT and button 2 PAL_KEY_ACTION_SCAN (PAL_KEY_ACTION_CAMERA_SCAN on
 * the model "RM23"), the records of button 2 are rewritten in all three planes, and the driver is
 * told. The DWORD "FixActive" under HKEY_LOCAL_MACHINE "Software\Dravonel\PAL" is then 1 and keeps
 * this from happening again, also after a repair that failed halfway.
 *
 * @retval S_OK always
 */
HRESULT PALAPI PALKEYInit(void);

/**
 * Ends the family; runs when a process detaches.
 * @retval S_OK always
 */
HRESULT PALAPI PALKEYTerm(void);

/**
 * Tells how many numbers of buttons there are, supported or not.
 *
 * @param[out] count  Always 8. Not null.
 *
 * @retval S_OK    answered
 * @retval E_FAIL  @p count is null
 */
HRESULT PALAPI PALKEYGetNumButtons(DWORD* count);

/**
 * Gives a button's name, such as "Left Side Top".
 *
 * A button is supported where plane 0 of the active layout has a record of kind 7 with the button's
 * scan code, the handle's included. A plane 0 of more than 1024 bytes supports none, and neither
 * does a layout whose path is missing, empty, unreadable or of more than 260 characters. The
 * numbers 1 and 4 are never supported.
 *
 * @param button       0 to 7.
 * @param[out] name    Room for 18 bytes (PAL_KEY_BUTTON_NAME_LENGTH); receives the 8-bit text with
 *                     its terminator. Unchanged on failure. Not null.
 * @param[out] length  Receives the text's length in bytes, without its terminator. Unchanged on
 *                     failure. Not null.
 *
 * @retval S_OK        done
 * @retval PAL_KEY_E_NOT_SUPPORTED  the button is not supported, or there is no such number
 * @retval E_FAIL      @p name or @p length is null
 */
HRESULT PALAPI PALKEYGetButtonName(LONG button, char* name, DWORD* length);

/**
 * Tells what a button does.
 *
 * From the values "Event1" to "Event7" under "EVENTS\DELTA" and "EVENTS\STATE" of the button's
 * layout. Of buttons 5, 6 and 7 a value that is missing or larger than 512 bytes stands for
 * PAL_KEY_ACTION_WINDOWS_DEFAULT. The scan events of the right-hand side count as those of
 * PAL_KEY_ACTION_SCAN. Names are compared exactly.
 *
 * @param button       0 to 7.
 * @param[out] action  A PALKeyAction. PAL_KEY_ACTION_UNKNOWN on every failure, and with S_OK where
 *                     an event's key or value is missing, where its name belongs to no action, or
 *                     where the two names belong to different ones. Not null.
 *
 * @retval S_OK        answered
 * @retval PAL_KEY_E_NOT_SUPPORTED  the button is not supported, as in PALKEYGetButtonName
 * @retval E_FAIL      @p action is null; or the path of the active layout, which was read when the
 *                     button was looked for, can then no longer be read
 */
HRESULT PALAPI PALKEYGetButtonAction(LONG button, DWORD* action);

/**
 * Sets what a button does, and tells the driver. Of the handle, button 0, nobody is told.
 *
 * Writes the two event names of the action as texts without terminator. The records of buttons 5, 6
 * and 7 are rewritten to signal their event when the action was PAL_KEY_ACTION_WINDOWS_DEFAULT,
 * once the original ones are saved under HKEY_LOCAL_MACHINE "Software\Dravonel\PAL"; they are
 * restored from there with PAL_KEY_ACTION_WINDOWS_DEFAULT. A plane that has no record of the
 * button, or cannot be read, is left out, and so is the restoring of one that was never saved. A
 * plane whose original cannot be saved keeps it: also where the saved plane has 4096 bytes and
 * more. What a call has written before it fails, or ends with its process, stays written; the same
 * call made again completes it, and what is saved of the button is then kept.
 *
 * Not reported: a failure in planes 0 and 1, a plane of the layout of 4096 bytes and more (it is
 * left as it is), a saved plane of 682 records that has no room for another, and a plane or a name
 * under "EVENTS\STATE" whose write fails.
 *
 * @param button  0 to 7.
 * @param action  A PALKeyAction, 1 to 7.
 *
 * @retval S_OK        done
 * @retval PAL_KEY_E_NO_SUCH_ACTION  @p action is not 1 to 7; nothing was changed
 * @retval PAL_KEY_E_NOT_SUPPORTED  the button is not supported, as in PALKEYGetButtonName; nothing
 * was changed
 * @retval E_FAIL      the layout has no key "EVENTS\DELTA" or "EVENTS\STATE"; the name under
 *                     "EVENTS\DELTA" cannot be written; for plane 2 the layout's key or that of the
 *                     saved records cannot be opened, the saved plane cannot be read or has 4096
 *                     bytes and more, or the layout's plane can no longer be read once its
 *                     record is saved; or the driver's key "Drivers\HID\ClientDrivers\DVLKeyboard"
 *                     cannot be opened, and the driver is then not told
 */
HRESULT PALAPI PALKEYSetButtonAction(LONG button, LONG action);

/**
 * Enables or disables a control key.
 *
 * Writes DWORD values under HKEY_LOCAL_MACHINE "Hardware\DeviceMap\Keybd": "VolumeKeyEnable";
 * "ContrastKeyEnable" and "HighContrastKeyEnable"; "BacklightKeyEnable"; "AltTabEnable". A failure
 * of the first of two values does not stop the second.
 *
 * @param key    A PALControlKey, 0 to 3.
 * @param state  0 disables; any other number enables and is written as 1.
 *
 * @retval S_OK        the key's last value is written
 * @retval PAL_KEY_E_NO_SUCH_CONTROL_KEY  there is no such control key; nothing was written
 * @retval PAL_E_WIN32(error)  the error of the last write: PAL_E_FILE_NOT_FOUND where the registry
 * key does not exist
 */
HRESULT PALAPI PALKEYControlKeyState(LONG key, DWORD state);

/**
 * Tells what the shift keys of the active layout do.
 *
 * A shift key is a binary value of four bytes under "ShiftKeys" of the layout, whose name begins
 * with "ShiftKey" in any case; other values are passed over.
 *
 * @param[out] behavior  A PALShiftBehavior; 0 also where there is no shift key. 0xFFFFFFFF where
 * the values cannot be listed, and unchanged on every other failure. Not null.
 *
 * @retval S_OK        answered
 * @retval E_FAIL      @p behavior is null
 * @retval PAL_E_WIN32(error)  the error of opening "Hardware\Devicemap\Keybd", of reading the
 * layout's path, of opening "ShiftKeys" or of listing its values: PAL_E_FILE_NOT_FOUND where one is
 * missing, PAL_E_MORE_DATA where the path has more than 260 characters or the list more than 65536
 * values
 */
HRESULT PALAPI PALKEYGetShiftBehavior(DWORD* behavior);

/**
 * Sets what the shift keys of the active layout do: all of them do the same. The driver is not
 * told.
 *
 * Of each shift key the low three bits of the first byte change.
 *
 * @param behavior  A PALShiftBehavior, 0 to 2.
 *
 * @retval S_OK          every shift key that could be listed is written
 * @retval E_INVALIDARG  @p behavior is above 2; nothing was changed
 * @retval PAL_E_WIN32(error)    as in PALKEYGetShiftBehavior, but for a failed list; or the error
 * of writing a shift key, and those behind it are unchanged
 */
HRESULT PALAPI PALKEYSetShiftBehavior(DWORD behavior);

/**
 * Sets how loud the click of a key is, and has the audio driver read its settings again.
 *
 * Keeps the DWORD "Key" under HKEY_CURRENT_USER "ControlPanel\Volume": level 2 as 0x10002, 0 and 1
 * as they are.
 *
 * @param level  0 (silent), 1 or 2.
 *
 * @retval S_OK        done
 * @retval E_FAIL      @p level is above 2, nothing was changed; or the audio driver cannot be told,
 *                     and the level is kept
 * @retval PAL_E_WIN32(error)  the error of the write: PAL_E_FILE_NOT_FOUND where the registry key
 * does not exist
 */
HRESULT PALAPI PALKEYSetKeyTapVol(DWORD level);

/**
 * Tells how loud the click of a key is.
 *
 * @param[out] level  0x10002 in the registry is 2 and 0x10000 is 0; any other number is as it is
 *                    there. Unchanged on failure. Not null.
 *
 * @retval S_OK        answered
 * @retval E_FAIL      @p level is null
 * @retval PAL_E_WIN32(error)  the error of the read: PAL_E_FILE_NOT_FOUND where the key or the
 * value does not exist
 */
HRESULT PALAPI PALKEYGetKeyTapVol(DWORD* level);

/**
 * Tells which keyboard the device has: the non-volatile parameter 0x35, kernel control 0x010122C4.
 *
 * @param[out] type  The parameter as it is; 0 where it cannot be read or holds no byte. Not null.
 *
 * @retval S_OK    answered
 * @retval E_FAIL  @p type is null
 */
HRESULT PALAPI PALKEYGetType(DWORD* type);

PAL_INTERFACE_END

#endif /* PALKEY_H_ */
