#include "bench/hand_written/registry.h"
#include "include/palmfgopt.h"

namespace {

constexpr const WCHAR* kPolicy = TEXT("Software\\Dravonel\\Policy");
constexpr HRESULT kEnabled = 0x04320001;
constexpr HRESULT kDisabled = 0x04320002;

constexpr HRESULT PolicyFailure(DWORD code) {
  return static_cast<HRESULT>(0x84320000U | code);
}

// 254 for a code that stands for no type.
DWORD TypeOf(DWORD code) {
  switch (code) {
    case 0x00:
      return 255;
    case 0x01:
      return 11;
    case 0x02:
      return 15;
    case 0x03:
      return 8;
    case 0x04:
      return 16;
    case 0x05:
    case 0x06:
      return 10;
    case 0x07:
      return 27;
    case 0x08:
      return 28;
    case 0x09:
      return 30;
    case 0x0A:
      return 31;
    case 0x0C:
      return 34;
    case 0x10:
      return 37;
    case 0x11:
      return 38;
    case 0x13:
      return 42;
    case 0x16:
      return 47;
    case 0x17:
      return 50;
    case 0x18:
      return 51;
    case 0x19:
      return 52;
    case 0x1A:
      return 54;
    case 0x1B:
      return 55;
    case 0x1C:
      return 56;
    case 0x1F:
      return 53;
    default:
      return 254;
  }
}

BOOL ReadParameter(WORD id, DWORD request_bytes, DWORD* value) {
  DWORD request = id;
  DWORD bytes = 0;
  *value = 0;
  return KernelIoControl(0x010122C4, &request, request_bytes, value, sizeof(*value), &bytes);
}

HRESULT ReadDatacoll(BYTE* data, DWORD room, DWORD* bytes) {
  *bytes = 0;
  HANDLE file = CreateFileW(TEXT("\\ConfigStore\\datacoll"), GENERIC_READ, 0, nullptr,
                            OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return ResultOfLastError();
  HRESULT result = S_OK;
  if (ReadFile(file, data, room, bytes, nullptr) == FALSE) result = ResultOfLastError();
  CloseHandle(file);
  return result >= 0 && *bytes == 0 ? E_FAIL : result;
}

HRESULT ReadDatacollByte(DWORD offset, DWORD* value) {
  if (value == nullptr) return E_FAIL;
  BYTE data[1024];
  DWORD bytes = 0;
  const HRESULT result = ReadDatacoll(data, sizeof(data), &bytes);
  *value = result >= 0 && offset < bytes ? data[offset] : 0;
  return result;
}

HANDLE OpenStore(DWORD access, DWORD disposition) {
  return CreateFileW(TEXT("\\ConfigStore\\DCEDPM"), access, 0, nullptr, disposition,
                     FILE_ATTRIBUTE_NORMAL, nullptr);
}

// Made with two zeros where it is missing.
HRESULT OpenStatuses(DWORD access, HANDLE* store) {
  *store = OpenStore(access, OPEN_EXISTING);
  if (*store != INVALID_HANDLE_VALUE) return S_OK;
  if (GetLastError() != ERROR_FILE_NOT_FOUND) return ResultOfLastError();
  *store = OpenStore(access | GENERIC_WRITE, CREATE_NEW);
  if (*store == INVALID_HANDLE_VALUE) return ResultOfLastError();
  const BYTE zeros[2] = {0, 0};
  DWORD bytes = 0;
  if (WriteFile(*store, zeros, sizeof(zeros), &bytes, nullptr) != FALSE) return S_OK;
  const HRESULT result = ResultOfLastError();
  CloseHandle(*store);
  return result;
}

BOOL ReadText(HKEY key, const WCHAR* name, WCHAR* text) {
  DWORD type = REG_NONE;
  DWORD bytes = 520;
  if (RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<BYTE*>(text), &bytes) !=
          ERROR_SUCCESS ||
      type != REG_SZ) {
    return FALSE;
  }
  text[bytes / sizeof(WCHAR)] = 0;
  return text[0] != 0;
}

HRESULT StateOf(HKEY feature, HKEY location, WCHAR* text) {
  if (ReadText(feature, TEXT("PolicyKey"), text) == FALSE) return PolicyFailure(4);
  DWORD state = 0;
  DWORD type = REG_NONE;
  DWORD bytes = sizeof(state);
  if (RegQueryValueExW(location, text, nullptr, &type, reinterpret_cast<BYTE*>(&state), &bytes) !=
          ERROR_SUCCESS ||
      type != REG_DWORD || bytes == 0) {
    return PolicyFailure(4);
  }
  if (state > 1) return PolicyFailure(8);
  return state == 0 ? kEnabled : kDisabled;
}

HRESULT PolicyOf(HKEY feature) {
  WCHAR text[261];
  if (ReadText(feature, TEXT("PolicyLocation"), text) == FALSE) return PolicyFailure(6);
  HKEY location = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, text, 0, KEY_QUERY_VALUE, &location) != ERROR_SUCCESS) {
    return kEnabled;
  }
  const HRESULT result = StateOf(feature, location, text);
  RegCloseKey(location);
  return result;
}

}  // namespace

HRESULT PALAPI PALMFGOpt_InternalDeviceType(DWORD* type, DWORD* s6_installed) {
  if (type == nullptr || s6_installed == nullptr) return E_FAIL;
  DWORD code = 0;
  *s6_installed = 0;
  *type = ReadParameter(0x1A, 4, &code) != FALSE ? TypeOf(code & 0x7F) : 34;
  return S_OK;
}

HRESULT PALAPI PALMFGOpt_InternalDevice2Type(DWORD* type) {
  if (type == nullptr) return E_FAIL;
  *type = 255;
  BYTE data[1024];
  DWORD bytes = 0;
  const HRESULT result = ReadDatacoll(data, sizeof(data), &bytes);
  if (result >= 0 && bytes > 2) *type = TypeOf(data[2]);
  return result;
}

HRESULT PALAPI PALMFGOpt_InternalDevice_ImageOrientation(DWORD* orientation) {
  return ReadDatacollByte(4, orientation);
}
HRESULT PALAPI PALMFGOpt_InternalDevice2_MountingRotation(DWORD* rotation) {
  return ReadDatacollByte(5, rotation);
}

HRESULT PALAPI PALMFGOpt_IsCameraEnabled(DWORD* enabled) {
  if (enabled == nullptr) return E_FAIL;
  DWORD bit = 0;
  DWORD disabled = 0;
  if (ReadParameter(0xD7, 2, &bit) == FALSE) bit = 0;
  *enabled = bit == 0 && (ReadDword(HKEY_LOCAL_MACHINE, kPolicy, TEXT("DisableImageCapture"),
                                    &disabled) < 0 ||
                          disabled == 0)
                 ? 1
                 : 0;
  return S_OK;
}

HRESULT PALAPI PALMFGOpt_IsDravonelContentEnabled(DWORD* enabled) {
  if (enabled == nullptr) return E_FAIL;
  *enabled = 1;
  return S_OK;
}

HRESULT PALAPI PALMFGOpt_IsDataCollectionContentEnabled(DWORD* enabled) {
  if (enabled == nullptr) return E_FAIL;
  *enabled = 1;
  DWORD flags = 0;
  if (ReadParameter(0x1B, 4, &flags) == FALSE) return E_FAIL;
  *enabled = flags != 0 ? 1 : 0;
  return S_OK;
}

HRESULT PALAPI PALMFGOpt_IsBluetoothModuleInstalled(DWORD* installed) {
  if (installed == nullptr) return E_FAIL;
  *installed = PALMFGOpt_IsDisabledByPolicy(TEXT("Bluetooth")) == kDisabled ? 0 : 1;
  return S_OK;
}

HRESULT PALAPI PALMFGOpt_IsDisabledByPolicy(const WCHAR* feature) {
  if (feature == nullptr) return PolicyFailure(9);
  constexpr WCHAR kRoot[] = TEXT("Software\\Dravonel\\Policy\\");
  constexpr size_t kRootUnits = sizeof(kRoot) / sizeof(WCHAR) - 1;
  WCHAR path[260];
  const size_t units = wcslen(feature);
  if (kRootUnits + units >= 260) return PolicyFailure(7);
  memcpy(path, kRoot, kRootUnits * sizeof(WCHAR));
  memcpy(path + kRootUnits, feature, (units + 1) * sizeof(WCHAR));
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS) {
    return PolicyFailure(7);
  }
  const HRESULT result = PolicyOf(key);
  RegCloseKey(key);
  return result;
}

HRESULT PALAPI PALMFGOpt_SetDPMStatus(DWORD scan_type, DWORD status) {
  HANDLE store = INVALID_HANDLE_VALUE;
  HRESULT result = OpenStatuses(GENERIC_WRITE, &store);
  if (result < 0) return result;
  const DWORD offset = scan_type == 4 ? 1 : 0;
  const auto byte = static_cast<BYTE>(status);
  DWORD bytes = 0;
  if (SetFilePointer(store, static_cast<LONG>(offset), nullptr, FILE_BEGIN) != offset ||
      WriteFile(store, &byte, 1, &bytes, nullptr) == FALSE) {
    result = ResultOfLastError();
  } else if (bytes != 1) {
    result = E_FAIL;
  }
  CloseHandle(store);
  return result;
}

HRESULT PALAPI PALMFGOpt_GetDPMStatus(DWORD scan_type, DWORD* status) {
  if (status == nullptr) return E_FAIL;
  *status = 0;
  HANDLE store = INVALID_HANDLE_VALUE;
  HRESULT result = OpenStatuses(GENERIC_READ, &store);
  if (result < 0) return result;
  BYTE statuses[2] = {0, 0};
  DWORD bytes = 0;
  if (SetFilePointer(store, 0, nullptr, FILE_BEGIN) != 0 ||
      ReadFile(store, statuses, sizeof(statuses), &bytes, nullptr) == FALSE) {
    result = ResultOfLastError();
  }
  CloseHandle(store);
  *status = statuses[scan_type == 4 ? 1 : 0];
  return result;
}

HRESULT PALAPI PALMFGOpt_PersistRegistry() {
  SetLastError(ERROR_SUCCESS);
  HANDLE event = CreateEventW(nullptr, TRUE, FALSE, TEXT("DVLRegFlushKeyAll"));
  if (event == nullptr) return E_FAIL;
  HRESULT result = S_OK;
  if (GetLastError() == ERROR_ALREADY_EXISTS) {
    result = SetEvent(event) != FALSE ? S_OK : E_FAIL;
  } else {
    HKEY const roots[] = {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER, HKEY_CLASSES_ROOT, HKEY_USERS};
    for (HKEY root : roots) {
      if (RegFlushKey(root) != ERROR_SUCCESS) result = E_FAIL;
    }
  }
  CloseHandle(event);
  return result;
}

HRESULT PALAPI PALMFGOpt_RestoreDefaults() {
  return E_FAIL;
}
HRESULT PALAPI PALMFGOpt_GetConfigString(DWORD /*selector*/) {
  return E_FAIL;
}
