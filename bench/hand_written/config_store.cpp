// The configuration store's update and the registry files. Of the store's file what the row has in
// it: the direct section with indexed keys and with numbers under keys of their own.
#include <cstdlib>

#include "bench/hand_written/registry.h"
#include "include/palmfgopt.h"
#include "include/palreg.h"

namespace {

struct IndexedKey {
  const WCHAR* path;
  const WCHAR* name;
};
constexpr IndexedKey kIndexedKeys[] = {
    {TEXT("Software\\Dravonel\\Decodes"), TEXT("ThreadPriority")},
    {TEXT("Software\\Dravonel\\DCEDriver"), TEXT("AsyncReadThreadPriority")},
    {TEXT("Software\\Dravonel\\DCEDriver"), TEXT("BeepThreadPriority")},
    {TEXT("Drivers\\Dravonel\\EA1"), TEXT("ImagerISTPriority")},
    {TEXT("Drivers\\Dravonel\\EA1"), TEXT("ImagerNRTPriority")},
    {TEXT("Drivers\\Dravonel\\EA2"), TEXT("ImagerISTPriority")},
    {TEXT("Drivers\\Dravonel\\EA2"), TEXT("ImagerNRTPriority")},
    {TEXT("Drivers\\Dravonel\\EAC"), TEXT("ImagerISTPriority")},
    {TEXT("Drivers\\Dravonel\\EAC"), TEXT("ImagerNRTPriority")},
};

struct Entry {
  WCHAR path[256];
  WCHAR name[64];
  DWORD value;
};

size_t WidenUpTo(WCHAR* wide, const BYTE* text, BYTE end, size_t room) {
  size_t length = 0;
  while (length + 1 < room && text[length] != end && text[length] != 0) {
    wide[length] = text[length];
    ++length;
  }
  wide[length] = 0;
  return length;
}

// The place behind an entry; null behind the last, and where it makes no sense.
const BYTE* ReadEntry(const BYTE* at, const BYTE* end, Entry* entry) {
  if (at == end || *at == 0xFF) return nullptr;
  if (*at == 0xAB) {
    const BYTE* text = ++at;
    while (at != end && *at != 0) ++at;
    if (end - at < 3) return nullptr;
    constexpr WCHAR kBase[] = TEXT("Software\\Dravonel\\");
    constexpr size_t kBaseUnits = sizeof(kBase) / sizeof(WCHAR) - 1;
    memcpy(entry->path, kBase, sizeof(kBase));
    const size_t units =
        WidenUpTo(entry->path + kBaseUnits, text, ':', sizeof(entry->path) / 2 - kBaseUnits);
    if (text[units] == ':') {
      WidenUpTo(entry->name, text + units + 1, 0, sizeof(entry->name) / 2);
    } else {
      memcpy(entry->name, TEXT("Default"), 8 * sizeof(WCHAR));
    }
  } else {
    if (*at >= 9 || end - at < 3) return nullptr;
    const IndexedKey& key = kIndexedKeys[*at];
    memcpy(entry->path, key.path, (wcslen(key.path) + 1) * sizeof(WCHAR));
    memcpy(entry->name, key.name, (wcslen(key.name) + 1) * sizeof(WCHAR));
  }
  entry->value = at[1] | static_cast<DWORD>(at[2]) << 8;
  return at + 3;
}

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
void Write(const Entry& entry) {
  HKEY key = nullptr;
  DWORD disposition = 0;
  if (RegCreateKeyExW(HKEY_LOCAL_MACHINE, entry.path, 0, nullptr, 0, 0, nullptr, &key,
                      &disposition) == ERROR_SUCCESS) {
    RegSetValueExW(key, entry.name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&entry.value),
                   sizeof(entry.value));
    RegCloseKey(key);
  }
  RegCloseKey(HKEY_LOCAL_MACHINE);
}

DWORD Sum(HANDLE file) {
  const DWORD size = GetFileSize(file, nullptr);
  if (size == 0 || size == INVALID_FILE_SIZE) return 0;
  constexpr DWORD kPart = 16 * 1024;
  auto* buffer = static_cast<BYTE*>(malloc(kPart));
  if (buffer == nullptr) return 0;
  DWORD sum = 0;
  for (DWORD left = size; left > 0;) {
    const DWORD part = left < kPart ? left : kPart;
    DWORD bytes = 0;
    if (ReadFile(file, buffer, part, &bytes, nullptr) == FALSE) {
      sum = 0;
      break;
    }
    DWORD at = 0;
    for (; at + 4 <= bytes; at += 4) {
      DWORD word = 0;
      memcpy(&word, buffer + at, 4);
      sum += word;
    }
    for (; at < bytes; ++at) sum += buffer[at];
    left -= part;
  }
  free(buffer);
  return sum;
}

BOOL Import(const WCHAR* path) {
  PROCESS_INFORMATION started;
  memset(&started, 0, sizeof(started));
  if (CreateProcessW(TEXT("\\Windows\\orqautoreg.exe"), path, nullptr, nullptr, FALSE, 0, nullptr,
                     nullptr, nullptr, &started) == FALSE) {
    return FALSE;
  }
  const DWORD wait = WaitForSingleObject(started.hProcess, 120000);
  CloseHandle(started.hThread);
  CloseHandle(started.hProcess);
  return wait == WAIT_OBJECT_0;
}

HRESULT ImportOnce(HKEY store, const WCHAR* path, const WCHAR* name, DWORD sum) {
  DWORD stored = 0;
  DWORD type = REG_NONE;
  DWORD bytes = sizeof(stored);
  if (RegQueryValueExW(store, name, nullptr, &type, reinterpret_cast<BYTE*>(&stored), &bytes) ==
          ERROR_SUCCESS &&
      type == REG_DWORD && stored == sum) {
    return S_OK;
  }
  if (Import(path) == FALSE) return E_FAIL;
  RegSetValueExW(store, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&sum), sizeof(sum));
  return S_OK;
}

// Of the families that files are meant for; a file of no family is for every device.
bool IsForAll(const WCHAR* name) {
  static const char* const tags[] = {"P8",    "P7",   "RM21", "RM18", "RMV",
                                     "RMx14", "RM13", "RM11", "RM10"};
  char narrow[MAX_PATH];
  wcstombs(narrow, name, sizeof(narrow));
  for (const char* at = narrow; *at != 0; ++at) {
    for (const char* tag : tags) {
      if (_strnicmp(at, tag, strlen(tag)) == 0) return false;
    }
  }
  return true;
}

BOOL ReadModel() {
  DWORD request = 0xD5;
  char model[128];
  DWORD bytes = 0;
  return KernelIoControl(0x010122C4, &request, 2, model, sizeof(model), &bytes);
}

}  // namespace

HRESULT PALAPI PALMFGOpt_ConfigStoreRegUpdate() {
  BYTE data[1024];
  const DWORD bytes = ReadStore(data, sizeof(data));
  if (bytes == 0 || data[0] != 0xBB) return S_OK;
  Entry entry;
  const BYTE* at = data + 1;
  while ((at = ReadEntry(at, data + bytes, &entry)) != nullptr) Write(entry);
  return S_OK;
}

HRESULT PALAPI PALREG_LoadRegistry(const WCHAR* directory, const WCHAR* file_name,
                                   DWORD /*clear_trees*/) {
  if (directory == nullptr || file_name == nullptr || *file_name == 0) return E_FAIL;
  const size_t folder = wcslen(directory);
  const size_t units = wcslen(file_name);
  if (folder + 1 + units >= MAX_PATH) return E_FAIL;
  if (ReadModel() == FALSE) return E_FAIL;
  if (!IsForAll(file_name)) return S_OK;
  WCHAR path[MAX_PATH];
  memcpy(path, directory, folder * sizeof(WCHAR));
  path[folder] = '\\';
  memcpy(path + folder + 1, file_name, (units + 1) * sizeof(WCHAR));
  HANDLE file =
      CreateFileW(path, GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  DWORD sum = 0;
  if (file != INVALID_HANDLE_VALUE) {
    sum = Sum(file);
    CloseHandle(file);
  }
  HKEY store = nullptr;
  DWORD disposition = 0;
  if (RegCreateKeyExW(HKEY_LOCAL_MACHINE, TEXT("\\Software\\Dravonel\\REGCHKSUMS"), 0, nullptr, 0,
                      0, nullptr, &store, &disposition) != ERROR_SUCCESS) {
    return Import(path) != FALSE ? S_OK : E_FAIL;
  }
  const HRESULT result = ImportOnce(store, path, file_name, sum);
  RegCloseKey(store);
  return result;
}
