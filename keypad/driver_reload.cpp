#include "keypad/driver_reload.h"

#include "frame/registry.h"
#include "frame/trace.h"

namespace pal {
namespace {

constexpr const WCHAR* kDriverPath = TEXT("Drivers\\HID\\ClientDrivers\\DVLKeyboard");

}  // namespace

HRESULT ReloadKeypadDriver(const WCHAR* event_name, const DriverReloadLines& lines) {
  const UniqueEvent event(CreateEventW(nullptr, FALSE, FALSE, event_name));
  if (!event) return S_OK;
  kKeypadTrace.Info(lines.flushing);
  UniqueRegistryKey driver;
  if (OpenRegistryKey(HKEY_LOCAL_MACHINE, kDriverPath, KEY_QUERY_VALUE, driver) != ERROR_SUCCESS) {
    kKeypadTrace.Error(lines.open_failed, kDriverPath, GetLastError());
    return E_FAIL;
  }
  const LONG error = RegFlushKey(driver.get());
  if (error != ERROR_SUCCESS) {
    kKeypadTrace.Error(lines.flush_failed, kDriverPath, static_cast<DWORD>(error));
  }
  driver.Reset();
  SetEvent(event.get());
  return S_OK;
}

}  // namespace pal
