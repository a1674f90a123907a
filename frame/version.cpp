#include "frame/version.h"

#include "frame/trace.h"
#include "include/palver.h"

namespace pal {
namespace {
constexpr TraceSource kTrace{Facility::kVersion};
}

}  // namespace pal

HRESULT PALAPI PALVER_LogVersion() {
  pal::kTrace.Info("Loaded PAL version: %s\r\n", pal::kLibraryVersion);
  return S_OK;
}
