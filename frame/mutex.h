// Named mutexes that keep the processes on one device apart: waiting, releasing, and a guard for
// both.
#ifndef FRAME_MUTEX_H_
#define FRAME_MUTEX_H_

#include <utility>

#include "frame/facility.h"
#include "frame/result.h"
#include "platform/wince.h"

namespace pal {

// Waits at most `timeout_ms` for `mutex`. Feedback must not block for ever: a wait that times out
// or finds the mutex abandoned is traced as an error of `facility` and reported as success. After a
// time-out the caller goes on without owning the mutex.
//
// S_OK          waited, whatever the outcome
// E_INVALIDARG  `mutex` is null or INVALID_HANDLE_VALUE; traced
[[nodiscard]] HRESULT PALWaitForMutex(Facility facility, HANDLE mutex, DWORD timeout_ms);

// S_OK                released
// S_FALSE             `mutex` is null; traced
// PAL_E_WIN32(error)  the error of the release, 0x120 where the caller does not own it; traced
HRESULT PALReleaseMutexIfValid(Facility facility, HANDLE mutex);

// The wait of the feedback families.
inline constexpr DWORD kMutexTimeoutMs = 2000;

// What a guard does at its end after a failed wait; a wait fails only for an invalid mutex.
enum class AfterFailedWait { kSkipRelease, kTryRelease };

// Waits in its constructor and releases in its destructor, also after a wait that timed out.
//
//   MutexGuard guard(Facility::kLed, led_mutex, kMutexTimeoutMs);
//   if (Failed(guard.wait_result())) return guard.wait_result();
class MutexGuard {
 public:
  MutexGuard(Facility facility, HANDLE mutex, DWORD timeout_ms,
             AfterFailedWait after_failed_wait = AfterFailedWait::kSkipRelease)
      : facility_(facility),
        mutex_(mutex),
        wait_result_(PALWaitForMutex(facility, mutex, timeout_ms)),
        release_pending_(Succeeded(wait_result_) ||
                         after_failed_wait == AfterFailedWait::kTryRelease) {}
  ~MutexGuard() { Release(); }
  MutexGuard(const MutexGuard&) = delete;
  MutexGuard& operator=(const MutexGuard&) = delete;

  // Of PALWaitForMutex.
  [[nodiscard]] HRESULT wait_result() const { return wait_result_; }

  // Releases before the guard's end, for what must follow the release. The destructor then does
  // nothing.
  void Release() {
    if (std::exchange(release_pending_, false)) PALReleaseMutexIfValid(facility_, mutex_);
  }

 private:
  Facility facility_;
  HANDLE mutex_;
  HRESULT wait_result_;
  bool release_pending_;
};

}  // namespace pal

#endif  // FRAME_MUTEX_H_
