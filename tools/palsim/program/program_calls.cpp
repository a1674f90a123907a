// The exports as a program of a simulated device sees them: each calls the library's copy of the
// process that the calling thread belongs to.
#include <fmt/format.h>

#include <cstdio>
#include <cstdlib>

#include "include/pal.h"
#include "platform/sim/kernel/kernel.h"
#include "platform/wince.h"
#include "tools/palsim/program/palsim_program.h"

namespace {

sim::ThreadState& Caller() {
  sim::ThreadState* thread = sim::CurrentThread();
  if (thread != nullptr) return *thread;
  std::fputs("a program called an export outside of any process of a simulated device\n", stderr);
  std::abort();
}

}  // namespace

extern "C" {

#define PAL_THUNK(result, name, parameters, arguments)           \
  [[gnu::visibility("default")]] result PALAPI name parameters { \
    return Caller().process.exports.name arguments;              \
  }
#include "thunks.inc"
#undef PAL_THUNK

[[gnu::visibility("default")]] void PalProgramSleep(unsigned milliseconds) {
  Sleep(milliseconds);
}

[[gnu::visibility("default")]] void PalProgramCheck(int holds, const char* what) {
  if (holds != 0) return;
  sim::ThreadState& caller = Caller();
  const sim::Scheduler::Lock lock(caller.process.kernel.mutex);
  caller.process.kernel.Misuse(caller, fmt::format("does not hold: {}", what));
}

}  // extern "C"
