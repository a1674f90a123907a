#include <algorithm>

#include "frame/trace.h"
#include "include/palmfgopt.h"
#include "sysinfo/answer_text.h"
#include "sysinfo/nonvolatile_parameters.h"

namespace {

constexpr pal::TraceSource kTrace{pal::Facility::kConfigStore};
constexpr WORD kDataCollectionFlags = 0x001B;

}  // namespace

HRESULT PALAPI PALMFGOpt_IsDataCollectionContentEnabled(DWORD* enabled) {
  if (enabled == nullptr) return E_FAIL;
  *enabled = 1;
  BYTE flags[4] = {};
  DWORD bytes = 0;
  if (!PalReadNvParm(pal::ParameterRequest<4>(kDataCollectionFlags), flags, bytes)) {
    kTrace.Error("KernelIoControl (DVL_NVPARM_DATACOLLECTION_FLAGS) error: %x", GetLastError());
    return E_FAIL;
  }
  const bool is_any_set =
      std::any_of(std::begin(flags), std::end(flags), [](BYTE flag) { return flag != 0; });
  *enabled = is_any_set ? 1 : 0;
  kTrace.Info("Data Collection Enabled = %d", *enabled);
  return S_OK;
}
