// The entry, and what has nothing to do.
#include "include/palbeep.h"
#include "include/paldisp.h"
#include "include/palkey.h"
#include "include/palled.h"
#include "include/palpwr.h"
#include "include/palver.h"
#include "platform/wince.h"

void SetOwnModule(HMODULE module);

PAL_INTERFACE_BEGIN

HRESULT PALAPI PALDoNothing() {
  return S_OK;
}

PAL_INTERFACE_END

HRESULT PALAPI PALVER_LogVersion() {
  return S_OK;
}

extern "C" BOOL WINAPI DllMain(HANDLE module, DWORD reason, LPVOID /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) {
    SetOwnModule(static_cast<HMODULE>(module));
    PALBEEPInit();
    PALDISPInit();
    PALLEDInit();
    PALKEYInit();
    PALPWRInit();
  } else if (reason == DLL_PROCESS_DETACH) {
    PALPWRTerm();
    PALKEYTerm();
    PALLEDTerm();
    PALDISPTerm();
    PALBEEPTerm();
  }
  return TRUE;
}
