// Registry files: import through the platform's importer, only where a file has changed.
#ifndef CONFIGSTORE_REGISTRY_FILE_H_
#define CONFIGSTORE_REGISTRY_FILE_H_

#include "platform/wince.h"

namespace pal {

// The sum of the file's 32-bit little-endian words and of each of the one to three bytes behind
// them, modulo 2 to the 32nd. 0 where the file is empty, cannot be opened without sharing, cannot
// be read, or where there is no memory for the read buffer.
[[nodiscard]] DWORD PALInitChecksumFile(const WCHAR* path);

// Imports one file unless its checksum is the one that was stored at its last import.
//
// S_OK    imported, or unchanged
// E_FAIL  the path does not fit 260 units, or the importer cannot be started or has not ended after
//         120000 ms; no checksum was stored
[[nodiscard]] HRESULT PALInitCheckAndLoadRegFile(const WCHAR* directory, const WCHAR* file_name,
                                                 DWORD clear_trees);

}  // namespace pal

#endif  // CONFIGSTORE_REGISTRY_FILE_H_
