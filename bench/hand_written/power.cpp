#include "bench/hand_written/registry.h"
#include "include/palpwr.h"

namespace {

constexpr const WCHAR* kTimeouts = TEXT("System\\CurrentControlSet\\Control\\Power\\Timeouts");
constexpr const WCHAR* kPowerButton = TEXT("Drivers\\Builtin\\Pwrbutton");
constexpr const WCHAR* kPowerButtonValue = TEXT("PowerButtonSuspendType");

constexpr HRESULT kInvalidInput = static_cast<HRESULT>(0x83EF0011);
constexpr HRESULT kNoEvent = static_cast<HRESULT>(0x83EF000D);
constexpr HRESULT kControlFailed = 19;
constexpr HRESULT kNoThread = 20;

constinit HANDLE reload_event = nullptr;
constinit HANDLE backlight_event = nullptr;
constinit HMODULE own_module = nullptr;
constinit volatile bool stop_requested = false;

HRESULT EventFailure(DWORD error) {
  return static_cast<HRESULT>(0x83EF0000U | (error & 0xFFFFU));
}

HRESULT WriteDeviceOff(const WCHAR* name, DWORD minutes) {
  const HRESULT result = WriteDword(HKEY_LOCAL_MACHINE, kTimeouts, name, minutes * 60);
  if (result < 0) return result;
  if (reload_event == nullptr) return kNoEvent;
  return SetEvent(reload_event) != FALSE ? result : EventFailure(GetLastError());
}

HRESULT WriteScreenOff(const WCHAR* name, DWORD seconds) {
  const HRESULT result = WriteDword(HKEY_LOCAL_MACHINE, kTimeouts, name, seconds);
  if (result < 0 || reload_event == nullptr) return result;
  return SetEvent(reload_event) != FALSE ? result : ResultOfLastError();
}

HRESULT ReadTimeout(const WCHAR* name, DWORD unit, DWORD* value) {
  if (value == nullptr) return E_FAIL;
  DWORD seconds = 0;
  const HRESULT result = ReadDword(HKEY_LOCAL_MACHINE, kTimeouts, name, &seconds);
  if (result >= 0) *value = seconds / unit;
  return result;
}

HANDLE OpenConfigurationDriver() {
  return CreateFileW(TEXT("CFG1:"), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0,
                     nullptr);
}

DWORD WINAPI KeepAwake(LPVOID module) {
  DWORD battery = 0;
  DWORD external = 0;
  PALPWRGetDeviceOff_Batt(&battery);
  PALPWRGetDeviceOff_ExtPwr(&external);
  DWORD period = battery < external ? battery : external;
  if (period > 45) period = 45;
  if (period == 0) period = 20;
  do {
    SystemIdleTimerReset();
    Sleep(period * 1000);
  } while (!stop_requested);
  FreeLibraryAndExitThread(static_cast<HMODULE>(module), 0);
}

}  // namespace

void SetOwnModule(HMODULE module) {
  own_module = module;
}

HRESULT PALAPI PALPWRInit() {
  if (reload_event != nullptr) return S_OK;
  HANDLE reload = CreateEventW(nullptr, FALSE, FALSE, TEXT("PowerManager/ReloadActivityTimeouts"));
  if (reload == nullptr) return EventFailure(GetLastError());
  HANDLE backlight = CreateEventW(nullptr, FALSE, FALSE, TEXT("BackLightChangeEvent"));
  if (backlight == nullptr) {
    const DWORD error = GetLastError();
    CloseHandle(reload);
    return EventFailure(error);
  }
  reload_event = reload;
  backlight_event = backlight;
  return S_OK;
}

HRESULT PALAPI PALPWRTerm() {
  if (reload_event == nullptr) return S_OK;
  CloseHandle(reload_event);
  CloseHandle(backlight_event);
  reload_event = nullptr;
  backlight_event = nullptr;
  return S_OK;
}

HRESULT PALAPI PALPWRSetDeviceOff_Batt(DWORD minutes) {
  switch (minutes) {
    case 0:
    case 1:
    case 2:
    case 3:
    case 4:
    case 5:
    case 6:
    case 10:
    case 11:
    case 15:
    case 30:
      return WriteDeviceOff(TEXT("BattSuspendTimeout"), minutes);
    default:
      return kInvalidInput;
  }
}

HRESULT PALAPI PALPWRSetDeviceOff_ExtPwr(DWORD minutes) {
  switch (minutes) {
    case 0:
    case 1:
    case 2:
    case 5:
    case 6:
    case 10:
    case 11:
    case 15:
    case 30:
      return WriteDeviceOff(TEXT("ACSuspendTimeout"), minutes);
    default:
      return kInvalidInput;
  }
}

HRESULT PALAPI PALPWRGetDeviceOff_Batt(DWORD* minutes) {
  return ReadTimeout(TEXT("BattSuspendTimeout"), 60, minutes);
}

HRESULT PALAPI PALPWRGetDeviceOff_ExtPwr(DWORD* minutes) {
  return ReadTimeout(TEXT("ACSuspendTimeout"), 60, minutes);
}

HRESULT PALAPI PALPWRSetScreenOff_Batt(LONG seconds) {
  switch (seconds) {
    case 0:
    case 60:
    case 120:
    case 180:
    case 240:
    case 300:
    case 360:
    case 660:
      return WriteScreenOff(TEXT("BattUserIdle"), static_cast<DWORD>(seconds));
    default:
      return S_OK;
  }
}

HRESULT PALAPI PALPWRSetScreenOff_ExtPwr(LONG seconds) {
  switch (seconds) {
    case 0:
    case 60:
    case 120:
    case 121:
    case 180:
    case 240:
    case 300:
    case 360:
    case 600:
    case 660:
    case 900:
    case 1800:
      return WriteScreenOff(TEXT("ACUserIdle"), static_cast<DWORD>(seconds));
    default:
      return S_OK;
  }
}

HRESULT PALAPI PALPWRGetScreenOff_Batt(DWORD* seconds) {
  return ReadTimeout(TEXT("BattUserIdle"), 1, seconds);
}

HRESULT PALAPI PALPWRGetScreenOff_ExtPwr(DWORD* seconds) {
  return ReadTimeout(TEXT("ACUserIdle"), 1, seconds);
}

HRESULT PALAPI PALPWRSetBootOption(DWORD option) {
  HANDLE driver = OpenConfigurationDriver();
  if (driver == INVALID_HANDLE_VALUE) return ResultOfLastError();
  DWORD returned = 0;
  const BOOL done =
      DeviceIoControl(driver, 100001, nullptr, option, nullptr, 0, &returned, nullptr);
  CloseHandle(driver);
  return done != FALSE ? S_OK : kControlFailed;
}

HRESULT PALAPI PALPWRGetBootOption(DWORD* option) {
  if (option == nullptr) return E_FAIL;
  HANDLE driver = OpenConfigurationDriver();
  if (driver == INVALID_HANDLE_VALUE) return ResultOfLastError();
  BYTE stored = 0;
  DWORD returned = 0;
  const BOOL done = DeviceIoControl(driver, 100000, nullptr, 0, &stored, 1, &returned, nullptr);
  CloseHandle(driver);
  if (done == FALSE) return kControlFailed;
  *option = stored;
  return S_OK;
}

HRESULT PALAPI PALPWRSetPwrButton(LONG option) {
  static const DWORD codes[] = {0, 0x01000000, 0x00200000, 0x00040000, 0x00800000, 0x00020000};
  const DWORD code = option >= 0 && option < 6 ? codes[option] : 0;
  return WriteDword(HKEY_LOCAL_MACHINE, kPowerButton, kPowerButtonValue, code);
}

HRESULT PALAPI PALPWRGetPwrButton(DWORD* option) {
  if (option == nullptr) return E_FAIL;
  DWORD code = 0;
  const HRESULT result = ReadDword(HKEY_LOCAL_MACHINE, kPowerButton, kPowerButtonValue, &code);
  if (result < 0) return result;
  switch (code) {
    case 0:
      *option = 0;
      break;
    case 0x01000000:
      *option = 1;
      break;
    case 0x00200000:
      *option = 2;
      break;
    case 0x00040000:
      *option = 3;
      break;
    case 0x00800000:
      *option = 4;
      break;
    case 0x00020000:
      *option = 5;
      break;
    default:
      return E_FAIL;
  }
  return result;
}

HRESULT PALAPI PALPWRSuspendCtrl(DWORD command) {
  if (command == 1) stop_requested = true;
  if (command != 0) return S_OK;
  WCHAR path[MAX_PATH];
  const DWORD units = GetModuleFileNameW(own_module, path, MAX_PATH);
  if (units == 0 || units >= MAX_PATH) return kNoThread;
  HMODULE module = LoadLibraryW(path);
  if (module == nullptr) return kNoThread;
  stop_requested = false;
  HANDLE thread = CreateThread(nullptr, 2048, &KeepAwake, module, 0, nullptr);
  if (thread == nullptr) {
    FreeLibrary(module);
    return kNoThread;
  }
  CloseHandle(thread);
  return S_OK;
}
