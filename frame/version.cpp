#include "frame/trace.h"
#include "include/palver.h"

namespace {
constexpr pal::TraceSource kTrace{pal::Facility::kVersion};
}

HRESULT PALAPI PALVER_LogVersion() {
  kTrace.Info("Loaded PAL version: %s\r\n", "0.0.0.0");
  return S_OK;
}
