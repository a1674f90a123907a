// Whether the device is one of the maker's own.
#include "frame/result.h"
#include "include/palmfgopt.h"
#include "include/palsysinfo.h"
#include "sysinfo/identity_trace.h"
#include "sysinfo/oem_information.h"

namespace {

constexpr pal::WideText kMaker = TEXT("Dravonel");

void TraceFlag(const char* enabled) {
  pal::kIdentityTrace.Info("PALSysinfo_IsDravonelDevice - Is ORQ software flag enabled =%s.\r\n",
                           enabled);
}

}  // namespace

HRESULT PALAPI PALSysinfo_IsDravonelDevice() {
  const pal::OemInformation oem;
  if (oem.text().find(kMaker) != pal::WideText::npos) return S_OK;
  // Others are counted in where the data-collection software has been let onto them.
  DWORD enabled = 0;
  const HRESULT result = PALMFGOpt_IsDataCollectionContentEnabled(&enabled);
  if (pal::Failed(result)) {
    if (result == E_FAIL) TraceFlag("No");
    return result;
  }
  TraceFlag(enabled != 0 ? "Yes" : "No");
  return enabled != 0 ? S_OK : E_FAIL;
}
