// The LEDs: eight switches, the flash of the good-read LED, and its configured state.
#include <array>
#include <atomic>

#include "feedback/notification_led.h"
#include "frame/mutex.h"
#include "frame/registry.h"
#include "frame/result.h"
#include "frame/trace.h"
#include "include/palled.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kLed};

constexpr LONG kNotificationLed = 0;
constexpr LONG kGoodReadLed = 3;
constexpr LONG kSystemLight = 6;

constexpr const WCHAR* kSettingsKey = TEXT("SOFTWARE\\Dravonel\\PAL");

struct ScanTypeSettings {
  const WCHAR* state;
  const WCHAR* on_duration_ms;
};

// By scan type.
constexpr auto kScanTypes = std::to_array<ScanTypeSettings>({
    {TEXT("IntGrLed"), TEXT("IntGrLedOnDur")},
    {TEXT("TethGrLed"), TEXT("TethGrLedOnDur")},
    {TEXT("BTGrLed"), TEXT("BTGrLedOnDur")},
    {TEXT("RFIDGrLed"), TEXT("RFIDGrLedOnDur")},
});
constexpr DWORD kDefaultOnDurationMs = 250;

// Of the process. Written while nothing else of the family runs.
constinit std::atomic<HANDLE> led_mutex{nullptr};
constinit std::atomic<HANDLE> on_timeout_event{nullptr};
constinit std::atomic<BOOL> initialised{FALSE};

HANDLE Get(const std::atomic<HANDLE>& handle) {
  return handle.load(std::memory_order_relaxed);
}

// Gives the handle away; the caller closes it.
HANDLE Take(std::atomic<HANDLE>& handle) {
  HANDLE taken = Get(handle);
  handle.store(nullptr, std::memory_order_relaxed);
  return taken;
}

// After a failed wait all but the notification pair try to release the mutex too. Readers of the
// log know the line of that release.
class LedGuard : public MutexGuard {
 public:
  explicit LedGuard(AfterFailedWait after_failed_wait)
      : MutexGuard(Facility::kLed, Get(led_mutex), kMutexTimeoutMs, after_failed_wait) {}
};

// A refusal means that the LED is in that state already.
void NLedCtrl(LONG led, INT command) {
  if (SetNotificationLed(led, command)) return;
  kTrace.Info("NLedCtrl(id:%d,cmd:%d) procid: 0x%x - LED already in requested state\r\n", led,
              command, GetCurrentProcessId());
}

// Does `work` under the mutex. Where the wait fails nothing is done, and `wait_failed` is traced.
template <typename Work>
HRESULT WithMutex(TraceSource::Format<HRESULT> wait_failed, Work work,
                  AfterFailedWait after_failed_wait = AfterFailedWait::kTryRelease) {
  const LedGuard guard(after_failed_wait);
  if (Succeeded(guard.wait_result())) return work();
  kTrace.Error(wait_failed, guard.wait_result());
  return guard.wait_result();
}

HRESULT Switch(LONG led, INT command, TraceSource::Format<HRESULT> wait_failed) {
  const auto after_failed_wait =
      led == kNotificationLed ? AfterFailedWait::kSkipRelease : AfterFailedWait::kTryRelease;
  const auto work = [led, command] {
    NLedCtrl(led, command);
    return S_OK;
  };
  return WithMutex(wait_failed, work, after_failed_wait);
}

DWORD ReadOnDurationMs(const WCHAR* name) {
  DWORD duration_ms = 0;
  const HRESULT result = PALRegGetDword(HKEY_LOCAL_MACHINE, kSettingsKey, name, &duration_ms);
  // A flash that never ends counts as unreadable too.
  if (Succeeded(result) && duration_ms != INFINITE) return duration_ms;
  kTrace.Error("PALLEDGrLedToggle - ERROR reading dur key. Use default of %dmsec: %ls\\%ls\r\n",
               kDefaultOnDurationMs, kSettingsKey, name);
  return kDefaultOnDurationMs;
}

void WaitForEndOfFlash(DWORD duration_ms) {
  if (HANDLE event = Get(on_timeout_event)) {
    WaitForSingleObject(event, duration_ms);
    return;
  }
  kTrace.Warning("GrLedToggle - No wait event created.  Sleeping for %dmsec\r\n", duration_ms);
  Sleep(duration_ms);
}

// The mutex is held all the time: other requests wait until the flash has ended.
HRESULT Flash(const ScanTypeSettings& settings) {
  const DWORD duration_ms = ReadOnDurationMs(settings.on_duration_ms);
  NLedCtrl(kGoodReadLed, kLedOn);
  WaitForEndOfFlash(duration_ms);
  NLedCtrl(kGoodReadLed, kLedOff);
  return S_OK;
}

HRESULT ReadState(const WCHAR* name, DWORD& state) {
  const HRESULT result = PALRegGetDword(HKEY_LOCAL_MACHINE, kSettingsKey, name, &state);
  if (Failed(result)) {
    kTrace.Error("PALLEDGrLedGetState - ERROR reading %ls from reg. procid: 0x%x, hr: 0x%x\r\n",
                 name, GetCurrentProcessId(), result);
    return result;
  }
  kTrace.Info("PALLEDGrLedGetState - procid: 0x%x, type: %ls, led_state: %d\r\n",
              GetCurrentProcessId(), name, state);
  return result;
}

void CreateOnTimeoutEvent() {
  if (Get(on_timeout_event) != nullptr) return;
  HANDLE event = CreateEventW(nullptr, FALSE, FALSE, TEXT("LED_ON_TIMEOUT"));
  if (event == nullptr) {
    kTrace.Error(
        "PALLEDInit - LED on timeout event creation failed. Will use sleep. win32err: 0x%x",
        GetLastError());
  }
  on_timeout_event.store(event, std::memory_order_relaxed);
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALLEDInit() {
  pal::UniqueMutex mutex(CreateMutexW(nullptr, FALSE, TEXT("DVLORQPAL_LED_MUTEX")));
  if (!mutex) {
    const DWORD error = GetLastError();
    const HRESULT result = pal::HResultFromWin32(error);
    pal::initialised.store(FALSE, std::memory_order_relaxed);
    // The line names another mutex; readers of the log know it so.
    pal::kTrace.Error(
        "PALLEDInit - ERROR Creating mutex. procid: 0x%x, name: %ls, win32err: 0x%x, hr: 0x%x\r\n",
        GetCurrentProcessId(), TEXT("DVLORQPALMutex"), error, result);
    return result;
  }
  // A second call leaves the first call's handle: another thread may be waiting for it.
  if (pal::Get(pal::led_mutex) == nullptr)
    pal::led_mutex.store(mutex.Release(), std::memory_order_relaxed);
  if (pal::initialised.load(std::memory_order_relaxed) != FALSE) return S_OK;
  pal::CreateOnTimeoutEvent();
  pal::initialised.store(TRUE, std::memory_order_relaxed);
  return S_OK;
}

HRESULT PALAPI PALLEDTerm() {
  pal::LedGuard guard(pal::AfterFailedWait::kTryRelease);
  if (pal::Failed(guard.wait_result())) {
    pal::kTrace.Error("PALLEDTerm - Mutex wait failed.  Aborting request. hr: 0x%x\r\n",
                      guard.wait_result());
  }
  pal::initialised.store(FALSE, std::memory_order_relaxed);
  guard.Release();
  pal::UniqueMutex(pal::Take(pal::led_mutex)).Reset();
  pal::UniqueEvent(pal::Take(pal::on_timeout_event)).Reset();
  return guard.wait_result();
}

HRESULT PALAPI PALLEDNotificationOn() {
  return pal::Switch(pal::kNotificationLed, pal::kLedOn,
                     "PALLEDNotificationOn - Mutex wait failed.  Aborting. hr:0x%x\r\n");
}
HRESULT PALAPI PALLEDNotificationOff() {
  return pal::Switch(pal::kNotificationLed, pal::kLedOff,
                     "PALLEDNotificationOff - Mutex wait failed.  Aborting. hr:0x%x\r\n");
}
HRESULT PALAPI PALLEDGrLedOn() {
  return pal::Switch(pal::kGoodReadLed, pal::kLedOn,
                     "PALLEDGrLedOn - Mutex wait failed.  Aborting request. hr: 0x%x\r\n");
}
HRESULT PALAPI PALLEDGrLedOff() {
  return pal::Switch(pal::kGoodReadLed, pal::kLedOff,
                     "PALLEDGrLedOff - Mutex wait failed.  Aborting request. hr: 0x%x\r\n");
}
HRESULT PALAPI PALLEDSysLightOn() {
  return pal::Switch(pal::kSystemLight, pal::kLedOn,
                     "PALLEDSysLightOn - Mutex wait failed.  Aborting request. hr: 0x%x\r\n");
}
HRESULT PALAPI PALLEDSysLightOff() {
  return pal::Switch(pal::kSystemLight, pal::kLedOff,
                     "PALLEDSysLightOff - Mutex wait failed.  Aborting request. hr: 0x%x\r\n");
}
HRESULT PALAPI PALLEDSysLightBlinkStart() {
  return pal::Switch(
      pal::kSystemLight, pal::kLedBlink,
      "PALLEDSysLightBlinkStart - Mutex wait failed.  Aborting request. hr: 0x%x\r\n");
}
HRESULT PALAPI PALLEDSysLightBlinkStop() {
  return pal::Switch(
      pal::kSystemLight, pal::kLedOff,
      "PALLEDSysLightBlinkStop - Mutex wait failed.  Aborting request. hr: 0x%x\r\n");
}

HRESULT PALAPI PALLEDGrLedToggle(DWORD scan_type) {
  if (scan_type >= pal::kScanTypes.size()) return E_FAIL;
  return pal::WithMutex("PALLEDGrLedToggle - Mutex wait failed.  Aborting request. hr: 0x%x\r\n",
                        [scan_type] { return pal::Flash(pal::kScanTypes[scan_type]); });
}

HRESULT PALAPI PALLEDGrLedGetState(DWORD scan_type, DWORD* state) {
  if (scan_type >= pal::kScanTypes.size() || state == nullptr) return E_FAIL;
  return pal::WithMutex("PALLEDGrLedGetState - Mutex wait failed.  Aborting request. hr: 0x%x\r\n",
                        [&] { return pal::ReadState(pal::kScanTypes[scan_type].state, *state); });
}

HRESULT PALAPI PALLEDIsGrLedOn() {
  NLED_SETTINGS_INFO settings{};
  settings.LedNum = static_cast<UINT>(pal::kGoodReadLed);
  // Where the call fails the record stays 0, which is off.
  NLedGetDeviceInfo(NLED_SETTINGS_INFO_ID, &settings);
  if (settings.OffOnBlink != pal::kLedOn) return E_FAIL;
  pal::kTrace.Info("IsGrLedOn - Good Read Led state. state: 0x%x\r\n", settings.OffOnBlink);
  return S_OK;
}
