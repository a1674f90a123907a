// The family's start and end.
#include <atomic>

#include "include/palkey.h"
#include "keypad/keypad_trace.h"
#include "keypad/scan_key_repair.h"

namespace pal {
namespace {

// For whoever looks into a process; no call asks for it.
constinit std::atomic<bool> initialised = false;

}  // namespace
}  // namespace pal

HRESULT PALAPI PALKEYInit() {
  pal::kKeypadTrace.Info("PALKEYInit - Entry");
  pal::initialised.store(true, std::memory_order_relaxed);
  pal::FixScanKeyEvents();
  return S_OK;
}

HRESULT PALAPI PALKEYTerm() {
  pal::initialised.store(false, std::memory_order_relaxed);
  return S_OK;
}
