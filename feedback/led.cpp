// The LEDs: eight switches, the flash of the good-read LED, and its configured state.
#include <array>
#include <atomic>

#include "feedback/notification_led.h"
#include "frame/mutex.h"
#include "frame/registry.h"
#include "frame/result.h"
#include "frame/trace.h"
#include "include/palled.h"

namespace {

constexpr pal::TraceSource kTrace{pal::Facility::kLed};

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

// The handle itself, which is then the caller's to close.
HANDLE Take(std::atomic<HANDLE>& handle) {
  HANDLE taken = Get(handle);
  handle.store(nullptr, std::memory_order_relaxed);
  return taken;
}

// All but the notification pair also try to release what they could not wait for; the difference
// is kept on purpose and shows in the log only.
class LedGuard : public pal::MutexGuard {
 public:
  explicit LedGuard(pal::AfterFailedWait after_failed_wait = pal::AfterFailedWait::kTryRelease)
      : MutexGuard(pal::Facility::kLed, Get(led_mutex), pal::kMutexTimeoutMs, after_failed_wait) {}
};

// A refusal means that the LED is in that state already.
void NLedCtrl(LONG led, INT command) {
  if (pal::SetNotificationLed(led, command)) return;
  kTrace.Info("NLedCtrl(id:%d,cmd:%d) procid: 0x%x - LED already in requested state\r\n", led,
              command, GetCurrentProcessId());
}

struct LedSwitch {
  LONG led;
  INT command;
  pal::TraceSource::Format<HRESULT> wait_failed;
  pal::AfterFailedWait after_failed_wait = pal::AfterFailedWait::kTryRelease;
};

constexpr LedSwitch kNotificationOn{
    kNotificationLed, pal::kLedOn,
    "PALLEDNotificationOn - Mutex wait failed.  Aborting. hr:0x%x\r\n",
    pal::AfterFailedWait::kSkipRelease};
constexpr LedSwitch kNotificationOff{
    kNotificationLed, pal::kLedOff,
    "PALLEDNotificationOff - Mutex wait failed.  Aborting. hr:0x%x\r\n",
    pal::AfterFailedWait::kSkipRelease};
constexpr LedSwitch kGoodReadOn{
    kGoodReadLed, pal::kLedOn,
    "PALLEDGrLedOn - Mutex wait failed.  Aborting request. hr: 0x%x\r\n"};
constexpr LedSwitch kGoodReadOff{
    kGoodReadLed, pal::kLedOff,
    "PALLEDGrLedOff - Mutex wait failed.  Aborting request. hr: 0x%x\r\n"};
constexpr LedSwitch kSystemLightOn{
    kSystemLight, pal::kLedOn,
    "PALLEDSysLightOn - Mutex wait failed.  Aborting request. hr: 0x%x\r\n"};
constexpr LedSwitch kSystemLightOff{
    kSystemLight, pal::kLedOff,
    "PALLEDSysLightOff - Mutex wait failed.  Aborting request. hr: 0x%x\r\n"};
constexpr LedSwitch kSystemLightBlinkStart{
    kSystemLight, pal::kLedBlink,
    "PALLEDSysLightBlinkStart - Mutex wait failed.  Aborting request. hr: 0x%x\r\n"};
constexpr LedSwitch kSystemLightBlinkStop{
    kSystemLight, pal::kLedOff,
    "PALLEDSysLightBlinkStop - Mutex wait failed.  Aborting request. hr: 0x%x\r\n"};

HRESULT Switch(const LedSwitch& request) {
  const LedGuard guard(request.after_failed_wait);
  if (pal::Failed(guard.wait_result())) {
    kTrace.Error(request.wait_failed, guard.wait_result());
    return guard.wait_result();
  }
  NLedCtrl(request.led, request.command);
  return S_OK;
}

DWORD ReadOnDurationMs(const WCHAR* name) {
  DWORD duration_ms = 0;
  const HRESULT result = PALRegGetDword(HKEY_LOCAL_MACHINE, kSettingsKey, name, &duration_ms);
  // A flash that never ends is no setting either.
  if (pal::Succeeded(result) && duration_ms != INFINITE) return duration_ms;
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

HRESULT ReadState(const WCHAR* name, DWORD& state) {
  const HRESULT result = PALRegGetDword(HKEY_LOCAL_MACHINE, kSettingsKey, name, &state);
  if (pal::Failed(result)) {
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

HRESULT PALAPI PALLEDInit() {
  pal::UniqueMutex mutex(CreateMutexW(nullptr, FALSE, TEXT("DVLORQPAL_LED_MUTEX")));
  if (!mutex) {
    const DWORD error = GetLastError();
    const HRESULT result = pal::HResultFromWin32(error);
    initialised.store(FALSE, std::memory_order_relaxed);
    // The line names another mutex than the one that was tried: kept so on purpose.
    kTrace.Error(
        "PALLEDInit - ERROR Creating mutex. procid: 0x%x, name: %ls, win32err: 0x%x, hr: 0x%x\r\n",
        GetCurrentProcessId(), TEXT("DVLORQPALMutex"), error, result);
    return result;
  }
  // Of a second call the first one's handle stays: it may be waited for just now.
  if (Get(led_mutex) == nullptr) led_mutex.store(mutex.Release(), std::memory_order_relaxed);
  if (initialised.load(std::memory_order_relaxed) != FALSE) return S_OK;
  CreateOnTimeoutEvent();
  initialised.store(TRUE, std::memory_order_relaxed);
  return S_OK;
}

HRESULT PALAPI PALLEDTerm() {
  LedGuard guard;
  if (pal::Failed(guard.wait_result())) {
    kTrace.Error("PALLEDTerm - Mutex wait failed.  Aborting request. hr: 0x%x\r\n",
                 guard.wait_result());
  }
  initialised.store(FALSE, std::memory_order_relaxed);
  guard.Release();
  pal::UniqueMutex(Take(led_mutex)).Close();
  pal::UniqueEvent(Take(on_timeout_event)).Close();
  return guard.wait_result();
}

HRESULT PALAPI PALLEDNotificationOn() {
  return Switch(kNotificationOn);
}
HRESULT PALAPI PALLEDNotificationOff() {
  return Switch(kNotificationOff);
}
HRESULT PALAPI PALLEDGrLedOn() {
  return Switch(kGoodReadOn);
}
HRESULT PALAPI PALLEDGrLedOff() {
  return Switch(kGoodReadOff);
}
HRESULT PALAPI PALLEDSysLightOn() {
  return Switch(kSystemLightOn);
}
HRESULT PALAPI PALLEDSysLightOff() {
  return Switch(kSystemLightOff);
}
HRESULT PALAPI PALLEDSysLightBlinkStart() {
  return Switch(kSystemLightBlinkStart);
}
HRESULT PALAPI PALLEDSysLightBlinkStop() {
  return Switch(kSystemLightBlinkStop);
}

HRESULT PALAPI PALLEDGrLedToggle(DWORD scan_type) {
  if (scan_type >= kScanTypes.size()) return E_FAIL;
  const LedGuard guard;
  if (pal::Failed(guard.wait_result())) {
    kTrace.Error("PALLEDGrLedToggle - Mutex wait failed.  Aborting request. hr: 0x%x\r\n",
                 guard.wait_result());
    return guard.wait_result();
  }
  const DWORD duration_ms = ReadOnDurationMs(kScanTypes[scan_type].on_duration_ms);
  NLedCtrl(kGoodReadLed, pal::kLedOn);
  // For the whole time the mutex is held: other requests wait behind a flash.
  WaitForEndOfFlash(duration_ms);
  NLedCtrl(kGoodReadLed, pal::kLedOff);
  return S_OK;
}

HRESULT PALAPI PALLEDGrLedGetState(DWORD scan_type, DWORD* state) {
  if (scan_type >= kScanTypes.size() || state == nullptr) return E_FAIL;
  const LedGuard guard;
  if (pal::Failed(guard.wait_result())) {
    kTrace.Error("PALLEDGrLedGetState - Mutex wait failed.  Aborting request. hr: 0x%x\r\n",
                 guard.wait_result());
    return guard.wait_result();
  }
  return ReadState(kScanTypes[scan_type].state, *state);
}

HRESULT PALAPI PALLEDIsGrLedOn() {
  NLED_SETTINGS_INFO settings{};
  settings.LedNum = static_cast<UINT>(kGoodReadLed);
  // What a call that fails leaves in the record is off.
  NLedGetDeviceInfo(NLED_SETTINGS_INFO_ID, &settings);
  if (settings.OffOnBlink != pal::kLedOn) return E_FAIL;
  kTrace.Info("IsGrLedOn - Good Read Led state. state: 0x%x\r\n", settings.OffOnBlink);
  return S_OK;
}
