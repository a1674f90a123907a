// Restart, image capture, USB, and what has nothing to switch.
#include "bench/hand_written/registry.h"
#include "include/palboot.h"
#include "include/palcomxpwr.h"
#include "include/palimagecapture.h"
#include "include/palstore.h"
#include "include/paluart.h"

namespace {

constexpr const WCHAR* kPolicy = TEXT("Software\\Dravonel\\Policy");
constexpr const WCHAR* kDrivers = TEXT("\\Drivers\\USB\\ClientDrivers\\Mass_Storage_Class");
constexpr const WCHAR* kMassStorage = TEXT("\\Drivers\\USB\\FunctionDrivers\\Mass_Storage_Class");
constexpr const WCHAR* kClients[] = {TEXT("Serial_Class"), TEXT("RNDIS"),
                                     TEXT("Mass_Storage_Class"), TEXT("Mass_Storage_Class")};
constexpr const WCHAR* kOptions[] = {TEXT("Serial_Class"), TEXT("RNDIS"), TEXT("DSK1:"),
                                     TEXT("DSK2:")};

constexpr HRESULT kBadInput = static_cast<HRESULT>(0x844F0001);
constexpr HRESULT kSelectFailed = static_cast<HRESULT>(0x844F0002);
constexpr HRESULT kGetFailed = static_cast<HRESULT>(0x844F0003);
constexpr HRESULT kBusNotOpened = static_cast<HRESULT>(0x844F0004);
constexpr HRESULT kUnknownClient = static_cast<HRESULT>(0x844F0005);

HANDLE OpenBus() {
  return CreateFileW(TEXT("$bus\\OTG_0_2_0"), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                     0, nullptr);
}

HRESULT Select(const WCHAR* client, DWORD code) {
  WCHAR name[128];
  memset(name, 0, sizeof(name));
  memcpy(name, client, wcslen(client) * sizeof(WCHAR));
  HANDLE bus = OpenBus();
  if (bus == INVALID_HANDLE_VALUE) return kBusNotOpened;
  DWORD returned = 0;
  const BOOL done = DeviceIoControl(bus, code, name, sizeof(name), nullptr, 0, &returned, nullptr);
  CloseHandle(bus);
  return done != FALSE ? S_OK : kSelectFailed;
}

// The first driver with a text "Dll", or the error of the walk; ERROR_NO_MORE_ITEMS behind the
// last.
template <typename Visit>
LONG VisitDrivers(Visit visit) {
  HKEY drivers = nullptr;
  LONG error = RegOpenKeyExW(HKEY_LOCAL_MACHINE, kDrivers, 0, KEY_ALL_ACCESS, &drivers);
  if (error != ERROR_SUCCESS) return error;
  for (DWORD index = 0; error == ERROR_SUCCESS; ++index) {
    WCHAR name[MAX_PATH];
    DWORD units = MAX_PATH;
    error = RegEnumKeyExW(drivers, index, name, &units, nullptr, nullptr, nullptr, nullptr);
    if (error != ERROR_SUCCESS) break;
    HKEY driver = nullptr;
    error = RegOpenKeyExW(drivers, name, 0, KEY_ALL_ACCESS, &driver);
    if (error != ERROR_SUCCESS) break;
    error = visit(driver);
    RegCloseKey(driver);
  }
  RegCloseKey(drivers);
  return error;
}

constexpr LONG kFound = -1;

// ERROR_FILE_NOT_FOUND also for a value of another type.
LONG ReadText(HKEY driver, const WCHAR* name, BYTE* text, DWORD* bytes) {
  DWORD type = REG_NONE;
  const LONG error = RegQueryValueExW(driver, name, nullptr, &type, text, bytes);
  const bool is_other = (error == ERROR_SUCCESS || error == ERROR_MORE_DATA) && type != REG_SZ;
  return is_other ? ERROR_FILE_NOT_FOUND : error;
}

LONG Move(HKEY driver, const WCHAR* from, const WCHAR* to) {
  BYTE text[520];
  DWORD bytes = sizeof(text);
  LONG error = ReadText(driver, from, text, &bytes);
  if (error == ERROR_FILE_NOT_FOUND) return ERROR_SUCCESS;
  if (error == ERROR_SUCCESS) error = RegSetValueExW(driver, to, 0, REG_SZ, text, bytes);
  if (error == ERROR_SUCCESS) error = RegDeleteValueW(driver, from);
  return error;
}

}  // namespace

HRESULT PALAPI PALBOOT_BootTerminal(LONG option) {
  const WCHAR* state = option == PAL_BOOT_COLD ? TEXT("coldreboot") : TEXT("reboot");
  if (option == PAL_BOOT_PREPARED) {
    DWORD value = 0x00040006;
    if (KernelIoControl(0x010123B0, &value, sizeof(value), nullptr, 0, nullptr) == FALSE) {
      return S_OK;
    }
  } else if (option != PAL_BOOT_WARM && option != PAL_BOOT_COLD) {
    return E_FAIL;
  }
  SetSystemPowerState(state, POWER_STATE_RESET, POWER_FORCE);
  return S_OK;
}

HRESULT PALAPI PALCOMxPwr_SetPower(const WCHAR* /*port*/, const PALComPortPower* power) {
  return power == nullptr ? E_FAIL : S_OK;
}

HRESULT PALAPI PALCOMxPwr_GetPower(const WCHAR* /*port*/, PALComPortPower* power) {
  if (power == nullptr) return E_FAIL;
  power->enable = 0;
  return S_OK;
}

HRESULT PALAPI PALUARTGetMuxMode() {
  return E_NOTIMPL;
}
HRESULT PALAPI PALUARTSetMuxMode() {
  return E_NOTIMPL;
}

HRESULT PALAPI PALImageCaptureGetStatus(DWORD* status) {
  if (status == nullptr) return E_FAIL;
  *status = PAL_IMAGE_CAPTURE_NOT_AVAILABLE;
  BYTE request[] = {0xD7, 0};
  DWORD bit = 0;
  DWORD bytes = 0;
  if (KernelIoControl(0x010122C4, request, sizeof(request), &bit, sizeof(bit), &bytes) == FALSE) {
    bit = 0;
  }
  if (bit != 0) return S_OK;
  DWORD disabled = 0;
  if (ReadDword(HKEY_LOCAL_MACHINE, kPolicy, TEXT("DisableImageCapture"), &disabled) < 0) {
    return S_OK;
  }
  *status = disabled != 0 ? PAL_IMAGE_CAPTURE_DISABLED : PAL_IMAGE_CAPTURE_ENABLED;
  return S_OK;
}

DWORD PALAPI PALImageCapture_SetEnable(BOOL enable) {
  const DWORD disabled = enable == FALSE ? 1 : 0;
  const HRESULT result =
      WriteDword(HKEY_LOCAL_MACHINE, kPolicy, TEXT("DisableImageCapture"), disabled);
  return result < 0 ? 1 : 0;
}

HRESULT PALAPI PALStore_SetUsbFuncDriver(DWORD option) {
  if (option > 3) return kBadInput;
  HRESULT result = Select(kClients[option], 0x00220018);
  if (result < 0) return result;
  if (option >= 2) {
    // The terminator and one unit more are stored.
    const WCHAR volume[] = {'D', 'S', 'K', static_cast<WCHAR>('1' + option - 2), ':', 0, 0};
    result = WriteValue(HKEY_LOCAL_MACHINE, kMassStorage, TEXT("DeviceName"), REG_SZ, volume,
                        sizeof(volume));
    if (result < 0) return result;
  }
  return Select(kClients[option], 0x00220010);
}

HRESULT PALAPI PALStore_GetUsbFuncDriver(DWORD* option) {
  if (option == nullptr) return kBadInput;
  WCHAR information[378];
  memset(information, 0, sizeof(information));
  HANDLE bus = OpenBus();
  if (bus == INVALID_HANDLE_VALUE) return kBusNotOpened;
  DWORD returned = 0;
  const BOOL done = DeviceIoControl(bus, 0x0022000C, nullptr, 0, information, sizeof(information),
                                    &returned, nullptr);
  CloseHandle(bus);
  if (done == FALSE) return kGetFailed;
  information[127] = 0;
  if (_wcsicmp(information, TEXT("Mass_Storage_Class")) == 0) {
    DWORD bytes = 256;
    memset(information, 0, sizeof(information));
    if (ReadValue(HKEY_LOCAL_MACHINE, kMassStorage, TEXT("DeviceName"), information, &bytes) < 0) {
      information[0] = 0;
    }
  }
  for (DWORD at = 0; at < 4; ++at) {
    if (_wcsicmp(information, kOptions[at]) != 0) continue;
    *option = at;
    return S_OK;
  }
  return kUnknownClient;
}

HRESULT PALAPI PALStore_SetUsbHostMassStorageEnable(BOOL enable) {
  const WCHAR* from = enable != FALSE ? TEXT("Dll__") : TEXT("Dll");
  const WCHAR* to = enable != FALSE ? TEXT("Dll") : TEXT("Dll__");
  const LONG error = VisitDrivers([&](HKEY driver) { return Move(driver, from, to); });
  return error == ERROR_NO_MORE_ITEMS ? S_OK : ResultOf(error);
}

HRESULT PALAPI PALStore_GetUsbHostMassStorageEnable(DWORD* enabled) {
  if (enabled == nullptr) return kBadInput;
  *enabled = 0;
  const LONG error = VisitDrivers([](HKEY driver) {
    BYTE text[520];
    DWORD bytes = sizeof(text);
    const LONG read = ReadText(driver, TEXT("Dll"), text, &bytes);
    if (read == ERROR_FILE_NOT_FOUND) return LONG{ERROR_SUCCESS};
    return read == ERROR_SUCCESS ? kFound : read;
  });
  if (error == kFound) *enabled = 1;
  return error == kFound || error == ERROR_NO_MORE_ITEMS ? S_OK : ResultOf(error);
}
