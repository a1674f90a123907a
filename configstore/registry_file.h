// Registry files: the platform's importer imports those that have changed.
#ifndef CONFIGSTORE_REGISTRY_FILE_H_
#define CONFIGSTORE_REGISTRY_FILE_H_

#include "platform/wince.h"

namespace pal {

// The sum of the file's 32-bit little-endian words and of the one to three bytes behind them,
// modulo 2 to the 32nd. 0 where the file is empty or cannot be opened without sharing, its size or
// content cannot be read, or there is no memory.
[[nodiscard]] DWORD PALInitChecksumFile(const WCHAR* path);

// Imports a file, unless its checksum is the one of its last import.
//
// S_OK    imported, or unchanged
// E_FAIL  the path does not fit 260 units, or the importer cannot be started or has not ended after
//         120000 ms; no checksum was stored
[[nodiscard]] HRESULT PALInitCheckAndLoadRegFile(const WCHAR* directory, const WCHAR* file_name,
                                                 DWORD clear_trees);

}  // namespace pal

#endif  // CONFIGSTORE_REGISTRY_FILE_H_
