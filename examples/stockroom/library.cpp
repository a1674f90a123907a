#include "library.h"

#include "text_file.h"

// Windows CE takes the names of exports in 16-bit characters, a PC in 8-bit ones.
#if defined(_WIN32) && !defined(UNDER_CE)
#define LOOK_UP(name) GetProcAddress(module, #name)
#else
#define LOOK_UP(name) GetProcAddressW(module, TEXT(#name))
#endif
#define FIND(name) Take(LOOK_UP(name), #name, library.name)

namespace stockroom {
namespace {

template <class Function>
bool Take(FARPROC found, const char* name, Function*& function) {
  function = reinterpret_cast<Function*>(reinterpret_cast<void*>(found));
  if (function == nullptr) {
    AppendLine(kMessages, "DVLORQPAL.dll has no %s: it is older than this program.", name);
  }
  return function != nullptr;
}

}  // namespace

bool Load(Library& library) {
  HMODULE module = LoadLibraryW(TEXT("DVLORQPAL.dll"));
  if (module == nullptr) {
    AppendLine(kMessages,
               "DVLORQPAL.dll cannot be loaded (error %u). Install it in \\Windows, or beside this "
               "program.",
               static_cast<unsigned>(GetLastError()));
    return false;
  }
  return FIND(PALBEEPBadRead) && FIND(PALBEEPGoodReadEx) && FIND(PALKEYGetButtonAction) &&
         FIND(PALKEYSetButtonAction) && FIND(PALSysio_Close) && FIND(PALSysio_ControlScanPower) &&
         FIND(PALSysio_InternalScannerInterfaceInit) && FIND(PALSysio_Open) &&
         FIND(PALSysio_SetScanTrigger);
}

}  // namespace stockroom
