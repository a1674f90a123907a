#include "stockroom.h"

#include "decoder.h"
#include "library.h"
#include "text_file.h"

namespace stockroom {
namespace {

// A DWORD under HKEY_CURRENT_USER "Software\Stockroom".
DWORD Setting(const WCHAR* name, DWORD otherwise) {
  HKEY key = nullptr;
  DWORD type = 0;
  DWORD number = 0;
  DWORD bytes = sizeof(number);
  if (RegOpenKeyExW(HKEY_CURRENT_USER, TEXT("Software\\Stockroom"), 0, KEY_QUERY_VALUE, &key) !=
      ERROR_SUCCESS) {
    return otherwise;
  }
  const LONG result =
      RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<BYTE*>(&number), &bytes);
  RegCloseKey(key);
  return result == ERROR_SUCCESS && type == REG_DWORD ? number : otherwise;
}

// Gives the key of the settings the action "scan".
bool TakeKey(const Library& library) {
  const LONG key = static_cast<LONG>(Setting(TEXT("Key"), PAL_BUTTON_LEFT_SIDE_TOP));
  DWORD action = PAL_KEY_ACTION_UNKNOWN;
  HRESULT result = library.PALKEYGetButtonAction(key, &action);
  if (result == S_OK && action != PAL_KEY_ACTION_SCAN) {
    result = library.PALKEYSetButtonAction(key, PAL_KEY_ACTION_SCAN);
  }
  if (result != S_OK) {
    AppendLine(kMessages, "Key %d cannot scan (0x%08X).", static_cast<int>(key),
               static_cast<unsigned>(result));
  }
  return result == S_OK;
}

void ReadItem(const Library& library, Decoder& decoder) {
  char code[Decoder::kLongestCode + 1];
  const bool is_read = library.PALSysio_SetScanTrigger(TRUE) == S_OK && decoder.Read(code);
  library.PALSysio_SetScanTrigger(FALSE);
  // The tone says that the item is in the list, so it comes last.
  if (is_read && AppendLine(kItems, "%s", code)) {
    library.PALBEEPGoodReadEx(PAL_SCAN_TYPE_INTERNAL);
  } else {
    library.PALBEEPBadRead();
  }
}

// The keypad's driver signals two events for a key that scans: on each change, and while it is
// held.
int ReadItems(const Library& library) {
  HANDLE changed = CreateEventW(nullptr, FALSE, FALSE, TEXT("DeltaLeftScan"));
  HANDLE held = CreateEventW(nullptr, TRUE, FALSE, TEXT("StateLeftScan"));
  const DWORD idle_ms = Setting(TEXT("IdleSeconds"), 600) * 1000;
  Decoder decoder;
  DWORD waited = WaitForSingleObject(changed, idle_ms);
  for (; waited == WAIT_OBJECT_0; waited = WaitForSingleObject(changed, idle_ms)) {
    if (WaitForSingleObject(held, 0) == WAIT_OBJECT_0) ReadItem(library, decoder);
  }
  if (held != nullptr) CloseHandle(held);
  if (changed != nullptr) CloseHandle(changed);
  return waited == WAIT_TIMEOUT ? 0 : 1;
}

}  // namespace

int Run() {
  Library library;
  if (!Load(library) || !TakeKey(library)) return 1;
  library.PALSysio_Open();
  library.PALSysio_InternalScannerInterfaceInit();
  const int status = ReadItems(library);
  library.PALSysio_ControlScanPower(PAL_SCANNER_POWER_DOWN);
  library.PALSysio_Close();
  return status;
}

}  // namespace stockroom
