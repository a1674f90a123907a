#include "frame/trace.h"
#include "include/palver.h"

namespace pal {
namespace {
constexpr TraceSource kTrace{Facility::kVersion};
}

}  // namespace pal

HRESULT PALAPI PALVER_LogVersion() {
  pal::kTrace.Info("Loaded PAL version: %s\r\n", "0.0.0.0");
  return S_OK;
}
