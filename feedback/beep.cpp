// The beeper: the sounds and vibrations for reads, configuration changes, keys and tag searches.
#include <array>
#include <atomic>

#include "feedback/beep_player.h"
#include "feedback/good_read_indicator.h"
#include "frame/mutex.h"
#include "frame/result.h"
#include "frame/trace.h"
#include "frame/unique_handle.h"
#include "include/palbeep.h"
#include "include/palsysinfo.h"
#include "include/palvib.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kBeeper};

// The values that name the sounds' files.
constexpr const WCHAR* kGoodRead = TEXT("GoodRead");
constexpr const WCHAR* kBadRead = TEXT("BadRead");
constexpr const WCHAR* kConfigChange = TEXT("ConfigChange");
constexpr const WCHAR* kConfigChangeError = TEXT("ConfigChangeError");
constexpr const WCHAR* kKeyClick = TEXT("KeyClick");
constexpr const WCHAR* kTagSearch = TEXT("TagSearch");

constexpr int kBadReadPulses = 4;  // after the first
constexpr DWORD kPulsePauseMs = 100;

// By indicator value. A larger value asks for nothing.
struct Indication {
  bool vibrates;
  int tones;
};
constexpr auto kIndications = std::to_array<Indication>(
    {{false, 0}, {false, 1}, {false, 2}, {true, 0}, {true, 1}, {true, 2}});

Indication IndicationOf(DWORD value) {
  return value < kIndications.size() ? kIndications[value] : Indication{false, 0};
}

constinit std::atomic<HANDLE> beep_mutex{nullptr};

// Traces, holds the mutex during `work`, and traces again.
template <typename Work, typename... Arguments>
HRESULT WithBeeper(TraceSource::Format<Arguments...> entry,
                   TraceSource::Format<HRESULT, Arguments...> exit, Work work,
                   Arguments... arguments) {
  kTrace.Info(entry, arguments...);
  MutexGuard guard(Facility::kBeeper, beep_mutex.load(std::memory_order_relaxed), kMutexTimeoutMs);
  if (Failed(guard.wait_result())) return guard.wait_result();
  const HRESULT result = work();
  guard.Release();
  kTrace.Info(exit, result, arguments...);
  return result;
}

HRESULT GoodRead(DWORD scan_type) {
  DWORD value = 0;
  HRESULT result = ReadGoodReadIndicator(scan_type, value);
  const Indication indication = IndicationOf(value);
  if (indication.vibrates) {
    const HRESULT vibration = PALVIBVibrate(scan_type);
    if (Failed(vibration)) {
      kTrace.Error("GoodReadEx - ERROR. Vibrate hr: 0x%x", vibration);
      result = vibration;
    }
  }
  if (indication.tones == 0) return result;
  return PlayDvlSynchronousBeep(indication.tones, kGoodRead, kPlayThrough);
}

// Five pulses. Where the first fails there are no others.
HRESULT VibrateForBadRead() {
  HRESULT result = PALVIBVibrate(0);
  if (Failed(result)) {
    kTrace.Error("PALBEEPBadRead - ERROR. Vibrate hr: 0x%x", result);
    return result;
  }
  for (int pulse = 0; pulse < kBadReadPulses; ++pulse) {
    result = PALVIBVibrate(kPulsePauseMs);
    Sleep(kPulsePauseMs);
  }
  return result;
}

// The indicator is the internal scanner's, whichever scanner failed.
HRESULT BadRead() {
  DWORD value = 0;
  HRESULT result = ReadGoodReadIndicator(kInternalScanner, value);
  const Indication indication = IndicationOf(value);
  if (indication.vibrates) result = VibrateForBadRead();
  if (indication.tones == 0) return result;
  return PlayDvlSynchronousBeep(1, kBadRead, kPlayThrough);
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALBEEPInit() {
  if (pal::beep_mutex.load(std::memory_order_relaxed) == nullptr) {
    HANDLE mutex = CreateMutexW(nullptr, FALSE, TEXT("DVLORQPAL_BEEP_MUTEX"));
    if (mutex == nullptr) {
      pal::kTrace.Error("PALBEEPInit - Error creating mutex. winerr:0x%x", GetLastError());
    }
    pal::beep_mutex.store(mutex, std::memory_order_relaxed);
  }
  // The model is asked for, but no tone differs by model today: the answer is not kept.
  WCHAR model[256] = {};
  DWORD bytes = sizeof(model);
  static_cast<void>(PALSysinfo_GetModelExW(model, &bytes));
  return S_OK;
}

HRESULT PALAPI PALBEEPTerm() {
  HANDLE mutex = pal::beep_mutex.load(std::memory_order_relaxed);
  if (pal::Failed(pal::PALWaitForMutex(pal::Facility::kBeeper, mutex, pal::kMutexTimeoutMs))) {
    pal::kTrace.Error("PALBEEPTerm - Mutex wait failed. winerr:0x%x", GetLastError());
  }
  if (mutex == nullptr) return S_OK;
  pal::PALReleaseMutexIfValid(pal::Facility::kBeeper, mutex);
  pal::beep_mutex.store(nullptr, std::memory_order_relaxed);
  pal::UniqueMutex(mutex).Reset();
  return S_OK;
}

HRESULT PALAPI PALBEEPGoodReadEx(DWORD in_scan_type) {
  if (in_scan_type >= pal::kIndicatorNames.size()) return E_INVALIDARG;
  return pal::WithBeeper<>(
      "PALBEEPGoodReadEx(in_scan_type:%d) - Entry",
      "0x%x=PALBEEPGoodReadEx(in_scan_type:%d) - Exit",
      [in_scan_type] { return pal::GoodRead(in_scan_type); }, in_scan_type);
}

HRESULT PALAPI PALBEEPBadRead() {
  return pal::WithBeeper("PALBEEPBadRead() - Entry", "0x%x=PALBEEPBadRead() - Exit", &pal::BadRead);
}

HRESULT PALAPI PALBEEPChangeConfig() {
  return pal::WithBeeper("PALBEEPChangeConfig() - Entry", "0x%x=PALBEEPChangeConfig() - Exit", [] {
    return pal::PlayDvlSynchronousBeep(1, pal::kConfigChange, pal::kPlayThrough);
  });
}

HRESULT PALAPI PALBEEPChangeConfigError() {
  return pal::WithBeeper(
      "PALBEEPChangeConfigError() - Entry", "0x%x=PALBEEPChangeConfigError() - Exit",
      [] { return pal::PlayDvlSynchronousBeep(1, pal::kConfigChangeError, pal::kPlayThrough); });
}

// The last line says "Entry"; readers of the log know it so.
HRESULT PALAPI PALBEEPKeyClick() {
  return pal::WithBeeper("PALBEEPKeyClick() - Entry", "0x%x=PALBEEPKeyClick() - Entry", [] {
    return pal::PlayDvlSynchronousBeep(1, pal::kKeyClick, pal::kPlayThrough);
  });
}

HRESULT PALAPI PALBEEPStartTagSearch() {
  return pal::WithBeeper(
      "PALBEEPStartTagSearch() - Entry", "0x%x=PALBEEPStartTagSearch() - Exit",
      [] { return pal::PlayDvlSynchronousBeep(1, pal::kTagSearch, pal::kLoop); });
}

HRESULT PALAPI PALBEEPStopTagSearch() {
  return pal::WithBeeper("PALBEEPStopTagSearch() - Entry", "0x%x=PALBEEPStopTagSearch() - Exit",
                         &pal::StopTagSearch);
}
