// The library's entry: starts the families when a process attaches and ends them when it detaches.
#include "frame/own_module.h"
#include "platform/wince.h"

namespace {

void Attach(HMODULE module) {
  pal::SetOwnModule(module);
}

void Detach() {}

}  // namespace

// Never fails; threads that come and go mean nothing to the library.
extern "C" BOOL WINAPI DllMain(HANDLE module, DWORD reason, LPVOID /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) Attach(static_cast<HMODULE>(module));
  if (reason == DLL_PROCESS_DETACH) Detach();
  return TRUE;
}
