// Whether the device is one of the maker's own.
#include "frame/result.h"
#include "include/palmfgopt.h"
#include "include/palsysinfo.h"
#include "sysinfo/identity/identity_trace.h"
#include "sysinfo/identity/oem_information.h"

namespace pal {
namespace {

constexpr WideText kMaker = TEXT("Dravonel");

void TraceFlag(const char* enabled) {
  kIdentityTrace.Info("PALSysinfo_IsDravonelDevice - Is ORQ software flag enabled =%s.\r\n",
                      enabled);
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALSysinfo_IsDravonelDevice() {
  const pal::OemInformation oem;
  if (oem.text().find(pal::kMaker) != pal::WideText::npos) return S_OK;
  // Others are counted in where the data-collection software has been let onto them.
  DWORD enabled = 0;
  const HRESULT result = PALMFGOpt_IsDataCollectionContentEnabled(&enabled);
  if (pal::Failed(result)) {
    if (result == E_FAIL) pal::TraceFlag("No");
    return result;
  }
  pal::TraceFlag(enabled != 0 ? "Yes" : "No");
  return enabled != 0 ? S_OK : E_FAIL;
}
