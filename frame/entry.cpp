// The library's entry: starts the families when a process attaches and ends them when it detaches.
#include <iterator>

#include "frame/own_module.h"
#include "include/palbeep.h"
#include "include/paldisp.h"
#include "include/palkey.h"
#include "include/palled.h"
#include "include/palpwr.h"
#include "platform/wince.h"

// Stands behind every export that has nothing to do on these devices; exports.def has their names.
// It is as visible as they are.
PAL_INTERFACE_BEGIN
HRESULT PALAPI PALDoNothing() {
  return S_OK;
}
PAL_INTERFACE_END

namespace pal {
namespace {

using Step = HRESULT(PALAPI*)();

struct Family {
  Step init;  // or null
  Step term;
};

// Started from the first row to the last and ended from the last to the first. The rows at both
// ends stand for families that have nothing to do on these devices.
constexpr Family kFamilies[] = {
    {nullptr, &PALDoNothing},       {&PALBEEPInit, &PALBEEPTerm},   {&PALDISPInit, &PALDISPTerm},
    {&PALLEDInit, &PALLEDTerm},     {&PALKEYInit, &PALKEYTerm},     {&PALPWRInit, &PALPWRTerm},
    {&PALDoNothing, &PALDoNothing}, {&PALDoNothing, &PALDoNothing},
};

// A family that cannot start reports that in its own exports; the library loads in any case.
void Attach(HMODULE module) {
  SetOwnModule(module);
  for (const Family& family : kFamilies) {
    if (family.init != nullptr) static_cast<void>(family.init());
  }
}

void Detach() {
  for (size_t row = std::size(kFamilies); row-- > 0;) static_cast<void>(kFamilies[row].term());
}

}  // namespace
}  // namespace pal

// Never fails. Nothing is done for threads that start or end.
extern "C" BOOL WINAPI DllMain(HANDLE module, DWORD reason, LPVOID /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) pal::Attach(static_cast<HMODULE>(module));
  if (reason == DLL_PROCESS_DETACH) pal::Detach();
  return TRUE;
}
