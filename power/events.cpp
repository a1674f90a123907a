#include "power/events.h"

#include <atomic>

#include "frame/result.h"
#include "frame/trace.h"
#include "frame/unique_handle.h"
#include "include/palpwr.h"

namespace pal {
namespace {

constinit std::atomic<HANDLE> reload_event{nullptr};
constinit std::atomic<HANDLE> backlight_event{nullptr};

HANDLE CreateAutoResetEvent(const WCHAR* name) {
  return CreateEventW(nullptr, FALSE, FALSE, name);
}

HRESULT EventFailure(DWORD error) {
  return PAL_PWR_E_EVENT(error & 0xFFFF);
}

// Nothing is done for an event that is null.
void Close(std::atomic<HANDLE>& event) {
  UniqueEvent(event.load(std::memory_order_relaxed)).Reset();
  event.store(nullptr, std::memory_order_relaxed);
}

}  // namespace

HANDLE ReloadEvent() {
  return reload_event.load(std::memory_order_relaxed);
}

}  // namespace pal

HRESULT PALAPI PALPWRInit() {
  if (pal::ReloadEvent() != nullptr) return S_OK;
  pal::UniqueEvent reload(pal::CreateAutoResetEvent(TEXT("PowerManager/ReloadActivityTimeouts")));
  if (!reload) {
    const DWORD error = GetLastError();
    const HRESULT result = pal::EventFailure(error);
    pal::kPowerTrace.Error("PALPWRInit - ERROR power mgr event. win32err: 0x%x, hr: 0x%x\r\n",
                           error, result);
    return result;
  }
  pal::UniqueEvent backlight(pal::CreateAutoResetEvent(TEXT("BackLightChangeEvent")));
  if (!backlight) {
    const DWORD error = GetLastError();
    const HRESULT result = pal::EventFailure(error);
    pal::kPowerTrace.Error("PALPWRInit - ERROR display event. win32err: 0x%x, hr: 0x%x\r\n", error,
                           result);
    return result;
  }
  pal::reload_event.store(reload.Release(), std::memory_order_relaxed);
  pal::backlight_event.store(backlight.Release(), std::memory_order_relaxed);
  return S_OK;
}

HRESULT PALAPI PALPWRTerm() {
  pal::Close(pal::reload_event);
  pal::Close(pal::backlight_event);
  return S_OK;
}
