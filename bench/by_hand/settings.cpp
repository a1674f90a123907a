// A number that is read, one that is written, and those that a configuration store brings.
#include "bench/by_hand/by_hand.h"
#include "include/paldisp.h"
#include "include/palmfgopt.h"

namespace {

constexpr const WCHAR* kBacklight = TEXT("ControlPanel\\Backlight");
constexpr const WCHAR* kLevel = TEXT("AmbientDeltaIndex");

struct IndexedKey {
  const WCHAR* path;
  const WCHAR* name;
};
constexpr IndexedKey kIndexedKeys[] = {
    {TEXT("Software\\Dravonel\\Decodes"), TEXT("ThreadPriority")},
    {TEXT("Software\\Dravonel\\DCEDriver"), TEXT("AsyncReadThreadPriority")},
    {TEXT("Software\\Dravonel\\DCEDriver"), TEXT("BeepThreadPriority")},
};

DWORD ReadStore(BYTE* data, DWORD room) {
  HANDLE file = CreateFileW(TEXT("\\ConfigStore\\dcecfg"), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                            FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return 0;
  DWORD bytes = 0;
  if (ReadFile(file, data, room, &bytes, nullptr) == FALSE) bytes = 0;
  CloseHandle(file);
  return bytes < room ? bytes : 0;
}

// The root is closed too: the platform ignores that.
void Write(const IndexedKey& indexed, DWORD value) {
  HKEY key = nullptr;
  DWORD disposition = 0;
  if (RegCreateKeyExW(HKEY_LOCAL_MACHINE, indexed.path, 0, nullptr, 0, KEY_SET_VALUE, nullptr, &key,
                      &disposition) == ERROR_SUCCESS) {
    RegSetValueExW(key, indexed.name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value),
                   sizeof(value));
    RegCloseKey(key);
  }
  RegCloseKey(HKEY_LOCAL_MACHINE);
}

}  // namespace

HRESULT PALAPI PALDISPGetDisplayBrightnessAmbient(DWORD* level) {
  return level == nullptr ? E_FAIL : ReadNumber(HKEY_CURRENT_USER, kBacklight, kLevel, level);
}

HRESULT PALAPI PALDISPSetDisplayBrightnessAmbient(DWORD level) {
  if (level < 1 || level > 5) return E_FAIL;
  return WriteNumber(HKEY_CURRENT_USER, kBacklight, kLevel, level);
}

HRESULT PALAPI PALMFGOpt_ConfigStoreRegUpdate() {
  BYTE data[1024];
  const DWORD bytes = ReadStore(data, sizeof(data));
  if (bytes == 0 || data[0] != 0xBB) return S_OK;
  for (DWORD at = 1; at + 3 <= bytes && data[at] < 3; at += 3) {
    Write(kIndexedKeys[data[at]], data[at + 1] | static_cast<DWORD>(data[at + 2]) << 8);
  }
  return S_OK;
}
