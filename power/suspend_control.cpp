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
#include <cstdint>

#include "frame/own_module.h"
#include "frame/unique_handle.h"
#include "include/palpwr.h"
#include "power/power_trace.h"

using pal::kPowerTrace;

namespace {

constexpr DWORD kStart = 0;
constexpr DWORD kStop = 1;
// No HRESULT of any family, but what callers know.
constexpr HRESULT kNoThread = 20;

// Of no effect: the platform heeds a stack's size only with STACK_SIZE_PARAM_IS_A_RESERVATION, and
// the thread gets the usual stack.
constexpr DWORD kStackBytes = 2048;
constexpr DWORD kLongestPeriod = 45;
constexpr DWORD kPeriodWithoutTimeouts = 20;

// The stop flag of all keep-awake threads of the process is the lowest bit: one stop ends them all.
// Clearing it counts on into the bits above it, so that each stop after that is another number.
constexpr DWORD kStopFlag = 1;
constinit std::atomic<DWORD> stop_state{0};

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

// Any stop but the one from before the thread's start, which that may be about to clear.
bool IsToStop(DWORD state_before_start) {
  const DWORD state = stop_state.load(std::memory_order_relaxed);
  return (state & kStopFlag) != 0 && state != state_before_start;
}

DWORD WINAPI KeepAwake(LPVOID argument) {
  const auto state_before_start = static_cast<DWORD>(reinterpret_cast<std::uintptr_t>(argument));
  kPowerTrace.Info("Temporarily suspend power off\r\n");
  const DWORD period_ms = PeriodSeconds() * 1000;
  do {
    SystemIdleTimerReset();
    Sleep(period_ms);
  } while (!IsToStop(state_before_start));
  kPowerTrace.Info("Resume power off\r\n");
  FreeLibraryAndExitThread(pal::OwnModule(), 0);
}

// Clears a stop from before the new thread, also for earlier threads that have not seen it yet. One
// that comes after the flag was looked at stands, and where there is no new thread every stop does.
HRESULT Start() {
  pal::UniqueModule own_module = pal::HoldOwnModule();
  if (!own_module) return kNoThread;
  DWORD state = stop_state.load(std::memory_order_relaxed);
  const pal::UniqueThread thread(CreateThread(nullptr, kStackBytes, &KeepAwake,
                                              reinterpret_cast<LPVOID>(std::uintptr_t{state}), 0,
                                              nullptr));
  if (!thread) return kNoThread;
  static_cast<void>(own_module.Release());  // the thread's
  if ((state & kStopFlag) != 0) {
    stop_state.compare_exchange_strong(state, state + 1, std::memory_order_relaxed);
  }
  return S_OK;
}

}  // namespace

HRESULT PALAPI PALPWRSuspendCtrl(DWORD command) {
  if (command == kStart) return Start();
  if (command == kStop) stop_state.fetch_or(kStopFlag, std::memory_order_relaxed);
  return S_OK;
}
