// Text files in the folder of the program: Windows CE has no current folder.
#ifndef STOCKROOM_TEXT_FILE_H_
#define STOCKROOM_TEXT_FILE_H_

#include <windows.h>

namespace stockroom {

constexpr const WCHAR* kCodes = TEXT("codes.txt");        // what the decoder "reads"
constexpr const WCHAR* kItems = TEXT("items.txt");        // the list of what was scanned
constexpr const WCHAR* kMessages = TEXT("messages.txt");  // what went wrong

// INVALID_HANDLE_VALUE where it cannot be opened.
HANDLE OpenTextFile(const WCHAR* name, DWORD access, DWORD disposition);

// Adds a line, of at most 200 characters, as printf would write it. False where it is not in the
// file.
bool AppendLine(const WCHAR* name, const char* format, ...);

}  // namespace stockroom

#endif  // STOCKROOM_TEXT_FILE_H_
