// The repair of the buttons' layout, once in the life of a device.
#ifndef KEYPAD_SCAN_KEY_REPAIR_H_
#define KEYPAD_SCAN_KEY_REPAIR_H_

namespace pal {

// Gives buttons 5, 6 and 7 their ordinary meaning and lets button 2 scan (with the camera on the
// model "RM23"), in events and planes, and tells the driver. Afterwards, whatever the result, the
// DWORD "FixActive" under HKEY_LOCAL_MACHINE "Software\Dravonel\PAL" is 1, and later calls do
// nothing.
//
// False where the layout is not found, where its key cannot be opened for plane 2, where plane 2
// becomes unreadable between its reading and its rewriting, or where the driver's key cannot be
// opened. An event or a record that is not there or cannot be read, a plane that is full and a
// write that fails go unreported.
bool FixScanKeyEvents();

}  // namespace pal

#endif  // KEYPAD_SCAN_KEY_REPAIR_H_
