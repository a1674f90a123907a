// After how long without use the device suspends and its screen turns off: four values of the power
// manager, which differ in what they allow and in how they answer what goes wrong.
#include <algorithm>
#include <array>
#include <span>

#include "frame/registry.h"
#include "frame/result.h"
#include "include/palpwr.h"
#include "power/events.h"
#include "power/power_trace.h"

namespace pal {
namespace {

constexpr const WCHAR* kKey = TEXT("System\\CurrentControlSet\\Control\\Power\\Timeouts");
// For the lines that show it in 8 bits.
constexpr const char* kKeyName = R"(System\CurrentControlSet\Control\Power\Timeouts)";

// Exactly these: the odd members (6, 11, 121, 660) are meant, and so is the gap at 600 on battery.
constexpr std::array<DWORD, 11> kDeviceOffBattery{0, 1, 2, 3, 4, 5, 6, 10, 11, 15, 30};
constexpr std::array<DWORD, 9> kDeviceOffExternal{0, 1, 2, 5, 6, 10, 11, 15, 30};
constexpr std::array<DWORD, 8> kScreenOffBattery{0, 60, 120, 180, 240, 300, 360, 660};
constexpr std::array<DWORD, 12> kScreenOffExternal{0,   60,  120, 121, 180, 240,
                                                   300, 360, 600, 660, 900, 1800};

// How the setter of a timeout answers what is not a failure of the registry.
struct Answers {
  DWORD seconds_per_unit;  // of what callers give and get
  HRESULT invalid_input;
  HRESULT no_event;  // the value is written all the same
  HRESULT (*event_failed)(DWORD error);
};

// Refuses, and reports an event that it cannot signal as the family's own failure.
constexpr Answers kDeviceOff{60, PAL_PWR_E_NO_SUCH_TIMEOUT, PAL_PWR_E_NO_EVENT,
                             [](DWORD error) { return PAL_PWR_E_EVENT(error & 0xFFFF); }};
// Ignores what it does not allow, and does without an event.
constexpr Answers kScreenOff{1, S_OK, S_OK, [](DWORD error) { return HResultFromWin32(error); }};

struct Timeout {
  const WCHAR* value_name;
  std::span<const DWORD> allowed;
  const Answers& answers;
  void (*trace_invalid)(DWORD value);
  void (*trace_set)(DWORD value, DWORD seconds);
  void (*trace_write_failed)();
  void (*trace_no_event)(HANDLE event);
  void (*trace_event_failed)(HANDLE event, DWORD error);
  void (*trace_read_failed)(HRESULT result);
  void (*trace_get)(DWORD seconds, DWORD value);
};

constexpr Timeout kDeviceOffOnBattery{
    TEXT("BattSuspendTimeout"),
    kDeviceOffBattery,
    kDeviceOff,
    [](DWORD value) {
      kPowerTrace.Error("PALPWRSetDeviceOff_Batt - ERROR invalid input: 0x%x\r\n", value);
    },
    [](DWORD value, DWORD seconds) {
      kPowerTrace.Info("SetDeviceOff_Batt - user_val: %d, adjusted_val: %d\r\n", value, seconds);
    },
    [] {},
    [](HANDLE event) {
      kPowerTrace.Error(
          "PALPWRSetDeviceOff_Batt - ERROR Cannot signal driver of chg event: 0x%x\r\n", event);
    },
    [](HANDLE event, DWORD error) {
      kPowerTrace.Error(
          "PALPWRSetDeviceOff_Batt - SetEvent failed. event: 0x%x, win32err: 0x%x\r\n", event,
          error);
    },
    [](HRESULT result) {
      kPowerTrace.Error("GetDeviceOff - DeviceOff_Batt disabled battsuspend: %d\r\n", result);
    },
    [](DWORD seconds, DWORD value) {
      kPowerTrace.Info("GetDeviceOff_Batt - sys_val: %dsec, user_val: %dmin\r\n", seconds, value);
    }};

constexpr Timeout kDeviceOffOnExternalPower{
    TEXT("ACSuspendTimeout"),
    kDeviceOffExternal,
    kDeviceOff,
    [](DWORD value) {
      kPowerTrace.Error("PALPWRSetDeviceOff_ExtPwr - ERROR invalid input: 0x%x\r\n", value);
    },
    [](DWORD value, DWORD seconds) {
      kPowerTrace.Info("SetDeviceOff_ExtPwr - user_val: %d, adjusted_val: %d, procid: 0x%x\r\n",
                       value, seconds, GetCurrentProcessId());
    },
    [] {},
    [](HANDLE event) {
      kPowerTrace.Error(
          "PALPWRSetDeviceOff_ExtPwr - ERROR Cannot signal driver of chg event: 0x%x\r\n", event);
    },
    [](HANDLE event, DWORD error) {
      kPowerTrace.Error(
          "PALPWRSetDeviceOff_ExtPwr - SetEvent failed. event: 0x%x, win32err: 0x%x\r\n", event,
          error);
    },
    [](HRESULT result) {
      kPowerTrace.Error("GetDeviceOff_ExtPwr - ERROR reading reg ACsuspend: %d\r\n", result);
    },
    [](DWORD seconds, DWORD value) {
      kPowerTrace.Info("GetDeviceOff_ExtPwr - sys_val: %dsec, user_val: %dmin\r\n", seconds, value);
    }};

constexpr Timeout kScreenOffOnBattery{
    TEXT("BattUserIdle"),
    kScreenOffBattery,
    kScreenOff,
    [](DWORD value) {
      kPowerTrace.Error("SetScreenOff_Batt - Invalid input. input: %d\r\n", value);
    },
    [](DWORD value, DWORD /*seconds*/) {
      kPowerTrace.Info("SetScreenOff_Batt - input: %d\r\n", value);
    },
    [] {
      kPowerTrace.Error("SetScreenOff_Batt - Error writing to: HKLM\\%s\\%s\r\n", kKeyName,
                        "BattUserIdle");
    },
    [](HANDLE event) {
      kPowerTrace.Error("SetScreenOff_Batt - Error event invalid: 0x%x\r\n", event);
    },
    [](HANDLE /*event*/, DWORD error) {
      kPowerTrace.Error("SetScreenOff_Batt - Error setting event. win32err: 0x%x\r\n", error);
    },
    [](HRESULT /*result*/) {
      kPowerTrace.Error("GetScreenOff_Batt - Error reading: HKLM\\%ls\\%ls\r\n", kKey,
                        TEXT("BattUserIdle"));
    },
    [](DWORD seconds, DWORD /*value*/) {
      kPowerTrace.Info("GetScreenOff_Batt - timeout: %d\r\n", seconds);
    }};

constexpr Timeout kScreenOffOnExternalPower{
    TEXT("ACUserIdle"),
    kScreenOffExternal,
    kScreenOff,
    [](DWORD value) {
      kPowerTrace.Error("SetScreenOff_ExtPwr - Invalid input. input: %d\r\n", value);
    },
    [](DWORD value, DWORD /*seconds*/) {
      kPowerTrace.Info("SetScreenOff_ExtPwr - input: %d\r\n", value);
    },
    [] {
      kPowerTrace.Error("SetScreenOff_ExtPwr - Error writing to: HKLM\\%s\\%s\r\n", kKeyName,
                        "ACUserIdle");
    },
    [](HANDLE event) {
      kPowerTrace.Error("SetScreenOff_ExtPwr - Error event invalid: 0x%x\r\n", event);
    },
    [](HANDLE /*event*/, DWORD error) {
      kPowerTrace.Error("SetScreenOff_ExtPwr - Error setting event. win32err: 0x%x\r\n", error);
    },
    [](HRESULT /*result*/) {
      kPowerTrace.Error("GetScreenOff_ExtPwr - Error reading: HKLM\\%s\\%s\r\n", kKeyName,
                        "ACUserIdle");
    },
    [](DWORD seconds, DWORD /*value*/) {
      kPowerTrace.Info("GetScreenOff_ExtPwr - timeout: %d\r\n", seconds);
    }};

// `written` is the answer of the write before it.
HRESULT SignalReload(const Timeout& timeout, HRESULT written) {
  auto* const event = ReloadEvent();
  if (event == nullptr) {
    timeout.trace_no_event(event);
    return timeout.answers.no_event;
  }
  if (SetEvent(event) != FALSE) return written;
  const DWORD error = GetLastError();
  timeout.trace_event_failed(event, error);
  return timeout.answers.event_failed(error);
}

HRESULT Set(const Timeout& timeout, DWORD value) {
  if (std::ranges::find(timeout.allowed, value) == timeout.allowed.end()) {
    timeout.trace_invalid(value);
    return timeout.answers.invalid_input;
  }
  const DWORD seconds = value * timeout.answers.seconds_per_unit;
  timeout.trace_set(value, seconds);
  const HRESULT written = PALRegSetDword(HKEY_LOCAL_MACHINE, kKey, timeout.value_name, seconds);
  if (Failed(written)) {
    timeout.trace_write_failed();
    return written;
  }
  return SignalReload(timeout, written);
}

HRESULT Get(const Timeout& timeout, DWORD* value) {
  if (value == nullptr) return E_FAIL;
  DWORD seconds = 0;
  const HRESULT result = PALRegGetDword(HKEY_LOCAL_MACHINE, kKey, timeout.value_name, &seconds);
  if (Failed(result)) {
    timeout.trace_read_failed(result);
    return result;
  }
  const DWORD units = seconds / timeout.answers.seconds_per_unit;
  timeout.trace_get(seconds, units);
  *value = units;
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
