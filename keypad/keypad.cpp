// The family's start and end.
#include "include/palkey.h"
#include "keypad/keypad_trace.h"
#include "keypad/scan_key_repair.h"

HRESULT PALAPI PALKEYInit() {
  pal::kKeypadTrace.Info("PALKEYInit - Entry");
  pal::FixScanKeyEvents();
  return S_OK;
}

HRESULT PALAPI PALKEYTerm() {
  return S_OK;
}
