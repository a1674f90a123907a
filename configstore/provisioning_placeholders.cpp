// Exports that provisioning tools call, although this family of devices does not support them.
#include "frame/trace.h"
#include "include/palmfgopt.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kConfigStore};

constexpr DWORD kTracedSelector = 1;

}  // namespace
}  // namespace pal

HRESULT PALAPI PALMFGOpt_RestoreDefaults() {
  pal::kTrace.Info("PALMFGOpt_RestoreDefaults - Placeholder");
  return E_FAIL;
}

HRESULT PALAPI PALMFGOpt_GetConfigString(DWORD selector) {
  if (selector == pal::kTracedSelector) {
    pal::kTrace.Warning("PALMFGOpt_GetConfigString - Not yet implemented for P7. Returned E_FAIL");
  }
  return E_FAIL;
}
