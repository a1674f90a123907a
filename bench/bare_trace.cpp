#include "bench/bare_trace.h"

#include <benchmark/benchmark.h>

#include <cstdarg>

#include "platform/wince.h"

namespace bench {
namespace {

constexpr DWORD kCategory = 0x43F00000;

using LogString = DWORD (*)(DWORD category, const char* text);

DWORD DiscardLine(DWORD /*category*/, const char* text) {
  benchmark::DoNotOptimize(text);
  return 0;
}
// Volatile, so that it is called and not inlined, as an entry of a library is.
LogString volatile log_string = &DiscardLine;

}  // namespace

sim::Module QuietEventLog() {
  return {"DVLEventLog.dll",
          {{"DVLLogString", reinterpret_cast<int (*)()>(reinterpret_cast<void*>(&DiscardLine))}}};
}

void BareTrace(const char* format, ...) {
  char line[1024];
  va_list arguments;
  va_start(arguments, format);
  _vsnprintf(line, sizeof(line), format, arguments);
  va_end(arguments);
  log_string(kCategory, line);
}

}  // namespace bench
