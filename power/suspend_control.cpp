// Holding off suspend: the one kind of thread that the library starts.
//
// A keep-awake thread runs until its process tells it to stop, and is seen to stop only after its
// present sleep. Meanwhile the process may free the library, and code of an unloaded library must
// never run. So each thread owns one load of the library: it is taken before the thread exists, so
// that there is no moment without it, and is given back at the thread's end by
// FreeLibraryAndExitThread, which does not return into what it may just have unloaded. Nobody waits
// for a thread, least of all PALPWRTerm: it runs at detach, when either the last thread has given
// its load back or the process ends and the platform has ended its threads first.
#include <algorithm>
#include <atomic>

#include "frame/own_module.h"
#include "frame/trace.h"
#include "frame/unique_handle.h"
#include "include/palpwr.h"

namespace pal {
namespace {

// Of no effect: the platform heeds a stack's size only with STACK_SIZE_PARAM_IS_A_RESERVATION, and
// the thread gets the usual stack.
constexpr DWORD kStackBytes = 2048;
constexpr DWORD kLongestPeriod = 45;
constexpr DWORD kPeriodWithoutTimeouts = 20;

// Shared by all keep-awake threads of the process: one stop ends them all.
constinit std::atomic<bool> stop_requested{false};

DWORD MinutesOrZero(HRESULT(PALAPI* get)(DWORD* minutes)) {
  DWORD minutes = 0;
  static_cast<void>(get(&minutes));  // which leaves it alone where it fails
  return minutes;
}

// The shorter timeout's minutes, taken for seconds: well inside of either.
DWORD PeriodSeconds() {
  const DWORD battery = std::min(MinutesOrZero(&PALPWRGetDeviceOff_Batt), kLongestPeriod);
  const DWORD period = std::min(MinutesOrZero(&PALPWRGetDeviceOff_ExtPwr), battery);
  return period == 0 ? kPeriodWithoutTimeouts : period;
}

DWORD WINAPI KeepAwake(LPVOID own_module) {
  kPowerTrace.Info("Temporarily suspend power off\r\n");
  const DWORD period_ms = PeriodSeconds() * 1000;
  do {
    SystemIdleTimerReset();
    Sleep(period_ms);
  } while (!stop_requested.load(std::memory_order_relaxed));
  kPowerTrace.Info("Resume power off\r\n");
  FreeLibraryAndExitThread(static_cast<HMODULE>(own_module), 0);
}

// The flag is cleared before the thread exists: a stop that follows at once is not lost, and a
// thread that has not seen the stop before goes on. Where this start comes to nothing, that stop is
// put back; one that another thread gives in this very moment may then be lost, or be seen a period
// later. Apart from the export, so that a stop does not pay for it.
[[gnu::noinline]] HRESULT Start() {
  UniqueModule own_module = HoldOwnModule();
  if (!own_module) return PAL_PWR_NO_THREAD;
  const bool was_requested = stop_requested.load(std::memory_order_relaxed);
  stop_requested.store(false, std::memory_order_relaxed);
  const UniqueThread thread(
      CreateThread(nullptr, kStackBytes, &KeepAwake, own_module.get(), 0, nullptr));
  if (!thread) {
    if (was_requested) stop_requested.store(true, std::memory_order_relaxed);
    return PAL_PWR_NO_THREAD;
  }
  static_cast<void>(own_module.Release());  // the thread's
  return S_OK;
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALPWRSuspendCtrl(DWORD command) {
  if (command == PAL_SUSPEND_KEEP_AWAKE) return pal::Start();
  if (command == PAL_SUSPEND_ALLOW) pal::stop_requested.store(true, std::memory_order_relaxed);
  return S_OK;
}
