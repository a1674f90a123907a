// Calls that ask the device, its drivers and another library.
#include "bench/by_hand/by_hand.h"
#include "include/palmfgopt.h"
#include "include/palpwr.h"
#include "include/palscan.h"
#include "include/palsysinfo.h"
#include "include/palsysio.h"

namespace {

constinit char serial_number[256] = {};
constinit DWORD serial_bytes = 0;
constinit HANDLE scan_driver = nullptr;
constinit FARPROC map_io_space = nullptr;
constinit volatile bool stop_requested = false;

bool ReadParameter(DWORD request, DWORD request_bytes, void* answer, DWORD room, DWORD* bytes) {
  *bytes = 0;
  const BOOL done = KernelIoControl(0x010122C4, &request, request_bytes, answer, room, bytes);
  if (*bytes > room) *bytes = room;
  return done != FALSE;
}

DWORD TypeOf(DWORD code) {
  constexpr BYTE kTypes[] = {255, 11, 15,  8,  16,  10,  10, 27, 28, 30, 31, 254, 34, 254, 254, 254,
                             37,  38, 254, 42, 254, 254, 47, 50, 51, 52, 54, 55,  56, 254, 254, 53};
  return code < sizeof(kTypes) ? kTypes[code] : 254;
}

bool ReadText(HKEY key, const WCHAR* name, WCHAR* text) {
  DWORD type = REG_NONE;
  DWORD bytes = 520;
  const LONG error =
      RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<BYTE*>(text), &bytes);
  if (error != ERROR_SUCCESS || type != REG_SZ) return false;
  text[bytes / sizeof(WCHAR)] = 0;
  return text[0] != 0;
}

// The feature's key names the key and the value that hold its switch. 2 where there is none.
DWORD ReadPolicy(HKEY feature) {
  WCHAR text[261];
  HKEY location = nullptr;
  DWORD state = 2;
  DWORD type = REG_NONE;
  DWORD bytes = sizeof(state);
  if (!ReadText(feature, TEXT("PolicyLocation"), text)) return state;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, text, 0, KEY_QUERY_VALUE, &location) != ERROR_SUCCESS) {
    return 0;
  }
  if (ReadText(feature, TEXT("PolicyKey"), text)) {
    RegQueryValueExW(location, text, nullptr, &type, reinterpret_cast<BYTE*>(&state), &bytes);
  }
  RegCloseKey(location);
  return type == REG_DWORD ? state : 2;
}

}  // namespace

HRESULT PALAPI PALSysinfo_GetSerialNumberExA(char* buffer, DWORD* length) {
  WCHAR oem[256];
  if (buffer == nullptr || length == nullptr) return E_FAIL;
  if (SystemParametersInfoW(SPI_GETOEMINFO, sizeof(oem), oem, 0) == FALSE || oem[0] == 0) return -1;
  if (serial_bytes == 0) {
    DWORD bytes = 0;
    if (!ReadParameter(0x48, 2, serial_number, sizeof(serial_number) - 1, &bytes)) return -1;
    serial_bytes = static_cast<DWORD>(strlen(serial_number)) + 1;
  }
  if (*length < serial_bytes) return E_FAIL;
  memcpy(buffer, serial_number, serial_bytes);
  *length = serial_bytes;
  return S_OK;
}

HRESULT PALAPI PALMFGOpt_InternalDeviceType(DWORD* type, DWORD* s6_installed) {
  if (type == nullptr || s6_installed == nullptr) return E_FAIL;
  DWORD code = 0;
  DWORD bytes = 0;
  *s6_installed = 0;
  *type = ReadParameter(0x1A, 4, &code, sizeof(code), &bytes) ? TypeOf(code & 0x7F) : 34;
  return S_OK;
}

HRESULT PALAPI PALMFGOpt_IsDisabledByPolicy(const WCHAR* feature) {
  constexpr WCHAR kRoot[] = TEXT("Software\\Dravonel\\Policy\\");
  constexpr size_t kRootUnits = sizeof(kRoot) / sizeof(WCHAR) - 1;
  WCHAR path[260];
  if (feature == nullptr) return E_FAIL;
  const size_t units = wcslen(feature);
  if (kRootUnits + units >= 260) return E_FAIL;
  memcpy(path, kRoot, sizeof(kRoot));
  memcpy(path + kRootUnits, feature, (units + 1) * sizeof(WCHAR));
  HKEY key = nullptr;
  const LONG error = RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_QUERY_VALUE, &key);
  if (error != ERROR_SUCCESS) return ResultOf(error);
  const DWORD state = ReadPolicy(key);
  RegCloseKey(key);
  return state <= 1 ? static_cast<HRESULT>(0x04320001 + state) : E_FAIL;
}

HRESULT PALAPI PALSysio_Open() {
  scan_driver = CreateFileW(TEXT("SCD1:"), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                            0, nullptr);
  return scan_driver != INVALID_HANDLE_VALUE ? S_OK : E_FAIL;
}

HRESULT PALAPI PALSysio_Close() {
  CloseHandle(scan_driver);
  return S_OK;
}

HRESULT PALAPI PALSysio_SetScanTrigger(BOOL trigger_on) {
  DWORD value = trigger_on != FALSE ? 1 : 0;
  DWORD bytes = 0;
  const BOOL done =
      DeviceIoControl(scan_driver, 0x22006C, &value, sizeof(value), nullptr, 0, &bytes, nullptr);
  return done != FALSE ? S_OK : E_FAIL;
}

HRESULT PALAPI PALSysio_MmMapIoSpace(DWORD a, DWORD b, DWORD c, DWORD d, DWORD* address) {
  using Map = HRESULT (*)(DWORD, DWORD, DWORD, DWORD, DWORD*);
  if (address == nullptr) return E_FAIL;
  if (map_io_space == nullptr) {
    const HMODULE provider = LoadLibraryW(TEXT("DVLORQPAL.dll"));
    map_io_space = GetProcAddressW(provider, TEXT("PALSysio_MmMapIoSpace"));
    if (map_io_space == nullptr) return E_FAIL;
  }
  const auto map = reinterpret_cast<Map>(reinterpret_cast<void (*)()>(map_io_space));
  DWORD found = 0;
  if (map(a, b, c, d, &found) < 0) found = 0;
  *address = found;
  return found != 0 ? S_OK : E_FAIL;
}

// The start, which is not measured, does nothing.
HRESULT PALAPI PALPWRSuspendCtrl(DWORD command) {
  if (command == 1) stop_requested = true;
  return S_OK;
}
