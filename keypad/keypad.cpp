// The family's start and end. At the start the buttons' layout is repaired, once in the life of a
// device.
#include <optional>
#include <string_view>

#include "frame/registry.h"
#include "frame/result.h"
#include "frame/trace.h"
#include "include/palkey.h"
#include "keypad/driver_reload.h"
#include "keypad/layout.h"
#include "keypad/ordinary_key.h"
#include "keypad/shift_plane.h"
#include "sysinfo/internal.h"

namespace pal {
namespace {

constexpr const WCHAR* kDoneFlag = TEXT("FixActive");

constexpr const ButtonRecord& kLayoutButton = *FindButton(PAL_BUTTON_LEFT_SIDE_TOP);
constexpr const ButtonRecord& kScanButton = *FindButton(PAL_BUTTON_LEFT_SIDE_BOTTOM);
constexpr size_t kScan = PAL_KEY_ACTION_SCAN - 1;
constexpr size_t kCameraScan = PAL_KEY_ACTION_CAMERA_SCAN - 1;

constexpr NoValuesLines kNoValues = {
    "FixScanKeyEvents: Did not get Values for %s button in shift plane 0\r\n",
    "FixScanKeyEvents: Did not get Values for %s button in shift plane 1\r\n",
    "FixScanKeyEvents: Did not get Values for %s button in shift plane 2\r\n",
};

bool IsDone() {
  DWORD done = 0;
  return Succeeded(PALRegGetDword(HKEY_LOCAL_MACHINE, kKeypadSettingsPath, kDoneFlag, &done)) &&
         done != 0;
}

bool ScansWithCamera() {
  constexpr DWORD kModelBytes = 128;
  char model[kModelBytes] = {};
  DWORD length = kModelBytes;
  return Succeeded(PalGetModel(model, &length)) && std::string_view(model) == "RM23";
}

void WriteOrdinaryEvents(const WCHAR* path, const WCHAR* ActionEvents::*kind) {
  for (const ButtonRecord& button : kButtonRecords) {
    if (!button.is_ordinary_key) continue;
    static_cast<void>(CreateEventForEventKey(path, button.event_value_name,
                                             button.action_events[kWindowsDefault].*kind));
  }
}

// A key of events that is missing stays so.
void WriteEvents(const LayoutPath& layout) {
  const LayoutPath delta = BelowLayout(layout, kDeltaEvents);
  const LayoutPath state = BelowLayout(layout, kStateEvents);
  WriteOrdinaryEvents(delta.data(), &ActionEvents::delta);
  WriteOrdinaryEvents(state.data(), &ActionEvents::state);
  const ActionEvents& scan = kScanButton.action_events[ScansWithCamera() ? kCameraScan : kScan];
  static_cast<void>(CreateEventForEventKey(delta.data(), kScanButton.event_value_name, scan.delta));
  static_cast<void>(CreateEventForEventKey(state.data(), kScanButton.event_value_name, scan.state));
}

// The original is not saved: the button is no ordinary key.
HRESULT SignalEvent(const WCHAR* layout, size_t plane) {
  std::optional<KeyRecord> record;
  const HRESULT result = ReadKeyRecord(kNoValues, layout, plane, kScanButton, record);
  if (!record) return result;
  ModifyKeyDataForEventTrigger(kScanButton.event_value_name, *record);
  return SetKeyValues(layout, kShiftPlanes[plane], kScanButton, *record);
}

HRESULT Repair() {
  constexpr DriverReloadLines kLines{
      "FixScanKeyEvents - Flushing keypad driver registry subkey",
      "FixScanKeyEvents - Could not open %ls. winerr:0x%x",
      "FixScanKeyEvents - RegFlushKey %ls failure. winerr:0x%x",
  };
  kKeypadTrace.Info("FixScanKeyEvents: Modifying registry for side buttons\r\n");
  LayoutPath layout;
  HRESULT result = ResolveButtonKeyPath(layout, kLayoutButton);
  if (Failed(result)) return result;
  WriteEvents(layout);
  for (size_t plane = 0; plane < kShiftPlanes.size(); ++plane) {
    result = SignalEvent(layout.data(), plane);
  }
  if (Failed(result)) return result;  // of the last plane
  return ReloadKeypadDriver(kScanButton.change_event_name, kLines);
}

// Gives buttons 5, 6 and 7 their ordinary meaning and lets button 2 scan, in events and planes, and
// tells the driver. An event or a record that is not there or cannot be read, a plane that is full
// and a write that fails go unreported.
void FixScanKeyEvents() {
  kKeypadTrace.Info("FixScanKeyEvents Enter\r\n");
  HRESULT result = S_OK;
  if (!IsDone()) {
    result = Repair();
    // The repair is tried once, whatever its result.
    static_cast<void>(PALRegCreateSetDword(HKEY_LOCAL_MACHINE, kKeypadSettingsPath, kDoneFlag, 1));
  }
  kKeypadTrace.Info("FixScanKeyEvents Complete hr=0x%x\r\n", result);
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALKEYInit() {
  pal::kKeypadTrace.Info("PALKEYInit - Entry");
  pal::FixScanKeyEvents();
  return S_OK;
}

HRESULT PALAPI PALKEYTerm() {
  return S_OK;
}
