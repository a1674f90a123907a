// The idle times after which the device suspends or its screen turns off: four values of the power
// manager.
#include <algorithm>
#include <array>
#include <optional>
#include <span>

#include "frame/registry.h"
#include "frame/result.h"
#include "frame/trace.h"
#include "include/palpwr.h"
#include "power/events.h"

namespace pal {
namespace {

constexpr const WCHAR* kKey = TEXT("System\\CurrentControlSet\\Control\\Power\\Timeouts");
// For the lines that show 8-bit text.
constexpr const char* kKeyName = R"(System\CurrentControlSet\Control\Power\Timeouts)";

// The odd values (6, 11, 121, 660) and the missing 600 on battery are intended.
constexpr std::array<DWORD, 11> kDeviceOffBattery{0, 1, 2, 3, 4, 5, 6, 10, 11, 15, 30};
constexpr std::array<DWORD, 9> kDeviceOffExternal{0, 1, 2, 5, 6, 10, 11, 15, 30};
constexpr std::array<DWORD, 8> kScreenOffBattery{0, 60, 120, 180, 240, 300, 360, 660};
constexpr std::array<DWORD, 12> kScreenOffExternal{0,   60,  120, 121, 180, 240,
                                                   300, 360, 600, 660, 900, 1800};

template <typename... Arguments>
using Format = TraceSource::Format<Arguments...>;

// In minutes. A setter refuses what is not allowed, and fails where it cannot signal the event.
struct DeviceOff {
  static constexpr DWORD kSecondsPerUnit = 60;
  static constexpr HRESULT kInvalidInput = PAL_PWR_E_NO_SUCH_TIMEOUT;
  static constexpr HRESULT kNoEvent = PAL_PWR_E_NO_EVENT;
  static HRESULT EventFailed(DWORD error) { return PAL_PWR_E_EVENT(error & 0xFFFF); }

  const WCHAR* value_name;
  std::span<const DWORD> allowed;
  Format<DWORD> invalid;
  std::optional<Format<DWORD, DWORD>> set;
  std::optional<Format<DWORD, DWORD, DWORD>> set_by_process;
  Format<HANDLE> no_event;
  Format<HANDLE, DWORD> event_failed;
  Format<HRESULT> read_failed;
  Format<DWORD, DWORD> get;
};
constexpr DeviceOff kDeviceOffOnBattery{
    .value_name = TEXT("BattSuspendTimeout"),
    .allowed = kDeviceOffBattery,
    .invalid = "PALPWRSetDeviceOff_Batt - ERROR invalid input: 0x%x\r\n",
    .set = Format<DWORD, DWORD>("SetDeviceOff_Batt - user_val: %d, adjusted_val: %d\r\n"),
    .set_by_process = std::nullopt,
    .no_event = "PALPWRSetDeviceOff_Batt - ERROR Cannot signal driver of chg event: 0x%x\r\n",
    .event_failed = "PALPWRSetDeviceOff_Batt - SetEvent failed. event: 0x%x, win32err: 0x%x\r\n",
    .read_failed = "GetDeviceOff - DeviceOff_Batt disabled battsuspend: %d\r\n",
    .get = "GetDeviceOff_Batt - sys_val: %dsec, user_val: %dmin\r\n"};
constexpr DeviceOff kDeviceOffOnExternalPower{
    .value_name = TEXT("ACSuspendTimeout"),
    .allowed = kDeviceOffExternal,
    .invalid = "PALPWRSetDeviceOff_ExtPwr - ERROR invalid input: 0x%x\r\n",
    .set = std::nullopt,
    .set_by_process = Format<DWORD, DWORD, DWORD>(
        "SetDeviceOff_ExtPwr - user_val: %d, adjusted_val: %d, procid: 0x%x\r\n"),
    .no_event = "PALPWRSetDeviceOff_ExtPwr - ERROR Cannot signal driver of chg event: 0x%x\r\n",
    .event_failed = "PALPWRSetDeviceOff_ExtPwr - SetEvent failed. event: 0x%x, win32err: 0x%x\r\n",
    .read_failed = "GetDeviceOff_ExtPwr - ERROR reading reg ACsuspend: %d\r\n",
    .get = "GetDeviceOff_ExtPwr - sys_val: %dsec, user_val: %dmin\r\n"};

void TraceSet(const DeviceOff& row, DWORD value, DWORD seconds) {
  if (row.set) kPowerTrace.Info(*row.set, value, seconds);
  if (row.set_by_process) {
    kPowerTrace.Info(*row.set_by_process, value, seconds, GetCurrentProcessId());
  }
}
void TraceWriteFailed(const DeviceOff& /*row*/) {}
void TraceEventFailed(const DeviceOff& row, HANDLE event, DWORD error) {
  kPowerTrace.Error(row.event_failed, event, error);
}
void TraceReadFailed(const DeviceOff& row, HRESULT result) {
  kPowerTrace.Error(row.read_failed, result);
}
void TraceGet(const DeviceOff& row, DWORD seconds, DWORD value) {
  kPowerTrace.Info(row.get, seconds, value);
}

// In seconds. A setter ignores what is not allowed, and succeeds without an event.
struct ScreenOff {
  static constexpr DWORD kSecondsPerUnit = 1;
  static constexpr HRESULT kInvalidInput = S_OK;
  static constexpr HRESULT kNoEvent = S_OK;
  static HRESULT EventFailed(DWORD error) { return HResultFromWin32(error); }

  const WCHAR* value_name;
  const char* value_name_8bit;
  std::span<const DWORD> allowed;
  Format<DWORD> invalid;
  Format<DWORD> set;
  Format<const char*, const char*> write_failed;
  Format<HANDLE> no_event;
  Format<DWORD> event_failed;
  std::optional<Format<const WCHAR*, const WCHAR*>> read_failed;
  std::optional<Format<const char*, const char*>> read_failed_8bit;
  Format<DWORD> get;
};
constexpr ScreenOff kScreenOffOnBattery{
    .value_name = TEXT("BattUserIdle"),
    .value_name_8bit = "BattUserIdle",
    .allowed = kScreenOffBattery,
    .invalid = "SetScreenOff_Batt - Invalid input. input: %d\r\n",
    .set = "SetScreenOff_Batt - input: %d\r\n",
    .write_failed = "SetScreenOff_Batt - Error writing to: HKLM\\%s\\%s\r\n",
    .no_event = "SetScreenOff_Batt - Error event invalid: 0x%x\r\n",
    .event_failed = "SetScreenOff_Batt - Error setting event. win32err: 0x%x\r\n",
    .read_failed =
        Format<const WCHAR*, const WCHAR*>("GetScreenOff_Batt - Error reading: HKLM\\%ls\\%ls\r\n"),
    .read_failed_8bit = std::nullopt,
    .get = "GetScreenOff_Batt - timeout: %d\r\n"};
constexpr ScreenOff kScreenOffOnExternalPower{
    .value_name = TEXT("ACUserIdle"),
    .value_name_8bit = "ACUserIdle",
    .allowed = kScreenOffExternal,
    .invalid = "SetScreenOff_ExtPwr - Invalid input. input: %d\r\n",
    .set = "SetScreenOff_ExtPwr - input: %d\r\n",
    .write_failed = "SetScreenOff_ExtPwr - Error writing to: HKLM\\%s\\%s\r\n",
    .no_event = "SetScreenOff_ExtPwr - Error event invalid: 0x%x\r\n",
    .event_failed = "SetScreenOff_ExtPwr - Error setting event. win32err: 0x%x\r\n",
    .read_failed = std::nullopt,
    .read_failed_8bit =
        Format<const char*, const char*>("GetScreenOff_ExtPwr - Error reading: HKLM\\%s\\%s\r\n"),
    .get = "GetScreenOff_ExtPwr - timeout: %d\r\n"};

void TraceSet(const ScreenOff& row, DWORD value, DWORD /*seconds*/) {
  kPowerTrace.Info(row.set, value);
}
void TraceWriteFailed(const ScreenOff& row) {
  kPowerTrace.Error(row.write_failed, kKeyName, row.value_name_8bit);
}
void TraceEventFailed(const ScreenOff& row, HANDLE /*event*/, DWORD error) {
  kPowerTrace.Error(row.event_failed, error);
}
void TraceReadFailed(const ScreenOff& row, HRESULT /*result*/) {
  if (row.read_failed) kPowerTrace.Error(*row.read_failed, kKey, row.value_name);
  if (row.read_failed_8bit) kPowerTrace.Error(*row.read_failed_8bit, kKeyName, row.value_name_8bit);
}
void TraceGet(const ScreenOff& row, DWORD seconds, DWORD /*value*/) {
  kPowerTrace.Info(row.get, seconds);
}

// `written` is the result of the write before.
template <typename Row>
HRESULT SignalReload(const Row& row, HRESULT written) {
  auto* const event = ReloadEvent();
  if (event == nullptr) {
    kPowerTrace.Error(row.no_event, event);
    return Row::kNoEvent;
  }
  if (SetEvent(event) != FALSE) return written;
  const DWORD error = GetLastError();
  TraceEventFailed(row, event, error);
  return Row::EventFailed(error);
}

template <typename Row>
HRESULT Set(const Row& row, DWORD value) {
  if (std::ranges::find(row.allowed, value) == row.allowed.end()) {
    kPowerTrace.Error(row.invalid, value);
    return Row::kInvalidInput;
  }
  const DWORD seconds = value * Row::kSecondsPerUnit;
  TraceSet(row, value, seconds);
  const HRESULT written = PALRegSetDword(HKEY_LOCAL_MACHINE, kKey, row.value_name, seconds);
  if (Succeeded(written)) return SignalReload(row, written);
  TraceWriteFailed(row);
  return written;
}

template <typename Row>
HRESULT Get(const Row& row, DWORD* value) {
  if (value == nullptr) return E_FAIL;
  DWORD seconds = 0;
  const HRESULT result = PALRegGetDword(HKEY_LOCAL_MACHINE, kKey, row.value_name, &seconds);
  if (Failed(result)) {
    TraceReadFailed(row, result);
    return result;
  }
  *value = seconds / Row::kSecondsPerUnit;
  TraceGet(row, seconds, *value);
  return result;
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALPWRSetDeviceOff_Batt(DWORD minutes) {
  return pal::Set(pal::kDeviceOffOnBattery, minutes);
}
HRESULT PALAPI PALPWRSetDeviceOff_ExtPwr(DWORD minutes) {
  return pal::Set(pal::kDeviceOffOnExternalPower, minutes);
}
HRESULT PALAPI PALPWRGetDeviceOff_Batt(DWORD* minutes) {
  return pal::Get(pal::kDeviceOffOnBattery, minutes);
}
HRESULT PALAPI PALPWRGetDeviceOff_ExtPwr(DWORD* minutes) {
  return pal::Get(pal::kDeviceOffOnExternalPower, minutes);
}

HRESULT PALAPI PALPWRSetScreenOff_Batt(LONG seconds) {
  return pal::Set(pal::kScreenOffOnBattery, static_cast<DWORD>(seconds));
}
HRESULT PALAPI PALPWRSetScreenOff_ExtPwr(LONG seconds) {
  return pal::Set(pal::kScreenOffOnExternalPower, static_cast<DWORD>(seconds));
}
HRESULT PALAPI PALPWRGetScreenOff_Batt(DWORD* seconds) {
  return pal::Get(pal::kScreenOffOnBattery, seconds);
}
HRESULT PALAPI PALPWRGetScreenOff_ExtPwr(DWORD* seconds) {
  return pal::Get(pal::kScreenOffOnExternalPower, seconds);
}
