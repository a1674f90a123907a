// Whether the device is one of the maker's own.
#include "include/palmfgopt.h"
#include "include/palsysinfo.h"
#include "sysinfo/identity/identity_sources.h"
#include "sysinfo/identity/oem_information.h"

namespace pal {
namespace {

constexpr WideText kMaker = TEXT("Dravonel");

}  // namespace
}  // namespace pal

HRESULT PALAPI PALSysinfo_IsDravonelDevice() {
  const pal::OemInformation oem;
  if (oem.text().find(pal::kMaker) != pal::WideText::npos) return S_OK;
  // A device of another maker counts too where the data-collection software is enabled on it.
  DWORD flag = 0;
  const bool is_enabled = PALMFGOpt_IsDataCollectionContentEnabled(&flag) == S_OK && flag != 0;
  pal::kIdentityTrace.Info("PALSysinfo_IsDravonelDevice - Is ORQ software flag enabled =%s.\r\n",
                           is_enabled ? "Yes" : "No");
  return is_enabled ? S_OK : E_FAIL;
}
