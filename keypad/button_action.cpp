// The action of a button: reading and setting the events that are signalled for it.
#include <array>
#include <optional>

#include "frame/registry.h"
#include "frame/result.h"
#include "frame/trace.h"
#include "include/palkey.h"
#include "keypad/driver_reload.h"
#include "keypad/layout.h"
#include "keypad/ordinary_key.h"

namespace pal {
namespace {

constexpr size_t kMaxEventUnits = 256;
using EventName = std::array<WCHAR, kMaxEventUnits + 1>;

// One of the two events of a button.
struct EventKind {
  WideText subkey;
  const WCHAR* ActionEvents::*of_action;
  // The event of the right-hand scan button, and that of the left-hand one, which stands for both.
  WideText right_scan;
  WideText left_scan;
  bool is_state;
  bool must_be_written;  // else a write that fails is no failure
};
constexpr EventKind kDelta{
    kDeltaEvents, &ActionEvents::delta, TEXT("DeltaRightScan"), TEXT("DeltaLeftScan"), false, true};
constexpr EventKind kState{
    kStateEvents, &ActionEvents::state, TEXT("StateRightScan"), TEXT("StateLeftScan"), true, false};

void TakeRightScanForLeft(const EventKind& kind, EventName& name) {
  if (WideText(name.data()) != kind.right_scan) return;
  static_cast<void>(Copy(name, kind.left_scan));
  kKeypadTrace.Info("Changed to %ls\r\n", name.data());
}

std::optional<size_t> FindAction(const ButtonRecord& button, WideText delta) {
  for (size_t action = 0; action < kActionCount; ++action) {
    if (delta == button.action_events[action].delta) return action;
  }
  return std::nullopt;
}

bool OpenEvents(const EventKind& kind, const LayoutPath& layout, LayoutPath& path,
                UniqueRegistryKey& key) {
  path = BelowLayout(layout, kind.subkey);
  return OpenKeypadKey(path.data(), key) == ERROR_SUCCESS;
}

bool ReadEventName(const ButtonRecord& button, const UniqueRegistryKey& key, EventName& name) {
  return ReadText(key, button.event_value_name, name) == ERROR_SUCCESS;
}

// Both give the action, or nothing where it cannot be told. `path` is the key that was read.

std::optional<size_t> ReadDelta(const ButtonRecord& button, const LayoutPath& layout,
                                LayoutPath& path) {
  UniqueRegistryKey key;
  if (!OpenEvents(kDelta, layout, path, key)) return std::nullopt;
  EventName name;
  if (!ReadEventName(button, key, name)) return GetActionForDefaultWindowsKeys(button);
  kKeypadTrace.Info("\"%s\", %ls=%ls, %ls\r\n", button.name, button.event_value_name, name.data(),
                    path.data());
  TakeRightScanForLeft(kDelta, name);
  return FindAction(button, name.data());
}

std::optional<size_t> ConfirmState(const ButtonRecord& button, const LayoutPath& layout,
                                   size_t action, LayoutPath& path) {
  UniqueRegistryKey key;
  if (!OpenEvents(kState, layout, path, key)) return std::nullopt;
  EventName name;
  if (!ReadEventName(button, key, name)) return GetActionForDefaultWindowsKeys(button);
  TakeRightScanForLeft(kState, name);
  if (WideText(name.data()) != button.action_events[action].state) return std::nullopt;
  return action;
}

// An action that cannot be told is no failure.
HRESULT GetAction(const ButtonRecord& button, DWORD& action) {
  LayoutPath layout;
  const HRESULT result = ResolveButtonKeyPath(layout, button);
  LayoutPath path = layout;
  std::optional<size_t> found;
  if (Succeeded(result)) found = ReadDelta(button, layout, path);
  if (found) found = ConfirmState(button, layout, *found, path);
  if (found) {
    action = static_cast<DWORD>(*found) + 1;
  } else {
    kKeypadTrace.Error("GetButtonAction error in HKLM\\%ls\r\n", path.data());
  }
  return result;
}

struct Change {
  const ButtonRecord& button;
  const LayoutPath& layout;
  size_t action;
  DWORD current_action;  // as callers count
};

HRESULT WriteEvent(const Change& change, const EventKind& kind, const UniqueRegistryKey& key,
                   const LayoutPath& path) {
  const ButtonRecord& button = change.button;
  const HRESULT result =
      SetupKeyForScanKeys(change.layout, button, change.current_action, kind.is_state);
  if (result != S_OK) return result;
  const WCHAR* const event_name = button.action_events[change.action].*kind.of_action;
  kKeypadTrace.Info("SetButtonAction: \"%s\", %ls, %ls=%ls\r\n", button.name, path.data(),
                    button.event_value_name, event_name);
  const LONG error = WriteText(key, button.event_value_name, event_name);
  if (error != ERROR_SUCCESS && kind.must_be_written) return HResultFromWin32(error);
  return SetupKeyForWinDefkeys(change.layout, button, change.action, kind.is_state);
}

bool WriteState(const Change& change) {
  LayoutPath path;
  UniqueRegistryKey key;
  if (!OpenEvents(kState, change.layout, path, key)) return false;
  EventName current;
  if (ReadEventName(change.button, key, current)) {
    kKeypadTrace.Info("SetButtonAction()2 \"%s\", %ls=%ls\r\n", change.button.name,
                      change.button.event_value_name, current.data());
  }
  return WriteEvent(change, kState, key, path) == S_OK;
}

bool TellDriver(const ButtonRecord& button) {
  constexpr DriverReloadLines kLines{
      "PALKEYSetButtonAction - Flushing keypad driver registry subkey",
      "PALKEYSetButtonAction - Could not open %ls. winerr:0x%x",
      "PALKEYSetButtonAction - RegFlushKey %ls failure. winerr:0x%x",
  };
  return button.change_event_name == nullptr ||
         Succeeded(ReloadKeypadDriver(button.change_event_name, kLines));
}

// Values that are written before a failure stay.
HRESULT SetAction(const ButtonRecord& button, size_t action) {
  LayoutPath layout;
  // A layout that is not found shows when its events are opened.
  static_cast<void>(ResolveButtonKeyPath(layout, button));
  LayoutPath path;
  UniqueRegistryKey delta;
  const bool opened = OpenEvents(kDelta, layout, path, delta);
  DWORD current_action = PAL_KEY_ACTION_UNKNOWN;
  const HRESULT result = PALKEYGetButtonAction(button.id, &current_action);
  if (!opened) return E_FAIL;
  const Change change{button, layout, action, current_action};
  if (WriteEvent(change, kDelta, delta, path) != S_OK) return E_FAIL;
  delta.Reset();
  const bool done = WriteState(change) && TellDriver(button);
  return done ? result : E_FAIL;
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALKEYGetButtonAction(LONG button, DWORD* action) {
  if (action == nullptr) return E_FAIL;
  pal::kKeypadTrace.Info("GetButtonAction(%d,*)\r\n", button);
  DWORD found = PAL_KEY_ACTION_UNKNOWN;
  const HRESULT result = pal::ButtonIsSupported(button)
                             ? pal::GetAction(*pal::FindButton(button), found)
                             : PAL_KEY_E_NOT_SUPPORTED;
  *action = found;
  pal::kKeypadTrace.Info("0x%08X=GetButtonAction(%d,*%d)\r\n", result, button, found);
  return result;
}

HRESULT PALAPI PALKEYSetButtonAction(LONG button, LONG action) {
  pal::kKeypadTrace.Info("SetButtonAction(%d,%d)\r\n", button, action);
  HRESULT result = PAL_KEY_E_NOT_SUPPORTED;
  LONG shown = action;
  if (pal::ButtonIsSupported(button)) {
    result = PAL_KEY_E_NO_SUCH_ACTION;
    if (action >= PAL_KEY_ACTION_SCAN && action <= PAL_KEY_ACTION_OEM_TRIGGER) {
      shown = action - 1;
      result = pal::SetAction(*pal::FindButton(button), static_cast<size_t>(shown));
    }
  }
  pal::kKeypadTrace.Info("0x%08X=SetButtonAction(%d,%d \"zero based adjusted\")\r\n", result,
                         button, shown);
  return result;
}
