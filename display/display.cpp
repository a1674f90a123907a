// The display family's start and end: it holds nothing between calls.
#include <atomic>

#include "include/paldisp.h"
#include "platform/wince.h"

namespace pal {
namespace {

// For whoever looks into a process; no export asks for it.
constinit std::atomic<BOOL> initialised{FALSE};

}  // namespace
}  // namespace pal

HRESULT PALAPI PALDISPInit() {
  pal::initialised.store(TRUE, std::memory_order_relaxed);
  return S_OK;
}

HRESULT PALAPI PALDISPTerm() {
  pal::initialised.store(FALSE, std::memory_order_relaxed);
  return S_OK;
}
