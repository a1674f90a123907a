// What a button does: reading and setting the events that are signalled for it.
#include <array>
#include <optional>

#include "frame/result.h"
#include "include/palkey.h"
#include "keypad/driver_reload.h"
#include "keypad/keypad_trace.h"
#include "keypad/layout.h"
#include "keypad/ordinary_key.h"

namespace pal {
namespace {

constexpr size_t kMaxEventUnits = 256;
using EventName = std::array<WCHAR, kMaxEventUnits + 1>;

constexpr const char* kGetName = "GetButtonAction";
constexpr const char* kSetName = "SetButtonAction";

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

std::optional<size_t> FindAction(const ButtonRecord& button, const EventName& delta) {
  for (size_t action = 0; action < kActionCount; ++action) {
    if (WideText(delta.data()) == button.action_events[action].delta) return action;
  }
  return std::nullopt;
}

bool OpenEvents(const EventKind& kind, const LayoutPath& layout, LayoutPath& path,
                UniqueRegistryKey& key) {
  path = BelowLayout(layout, kind.subkey);
  return OpenKeypadKey(path.data(), key) == ERROR_SUCCESS;
}

bool ReadEventName(const ButtonRecord& button, HKEY key, EventName& name) {
  return ReadKeypadText(key, button.event_value_name, name) == ERROR_SUCCESS;
}

// The next three tell an action, or nothing where it cannot be told. `path` is then the key at
// which they gave up.

std::optional<size_t> ReadDelta(const ButtonRecord& button, const LayoutPath& layout,
                                LayoutPath& path) {
  UniqueRegistryKey key;
  if (!OpenEvents(kDelta, layout, path, key)) return std::nullopt;
  EventName name;
  if (!ReadEventName(button, key.get(), name)) return GetActionForDefaultWindowsKeys(button);
  kKeypadTrace.Info("\"%s\", %ls=%ls, %ls\r\n", button.name, button.event_value_name, name.data(),
                    path.data());
  TakeRightScanForLeft(kDelta, name);
  return FindAction(button, name);
}

std::optional<size_t> ConfirmState(const ButtonRecord& button, const LayoutPath& layout,
                                   size_t action, LayoutPath& path) {
  UniqueRegistryKey key;
  if (!OpenEvents(kState, layout, path, key)) return std::nullopt;
  EventName name;
  if (!ReadEventName(button, key.get(), name)) return GetActionForDefaultWindowsKeys(button);
  TakeRightScanForLeft(kState, name);
  if (WideText(name.data()) != button.action_events[action].state) return std::nullopt;
  return action;
}

std::optional<size_t> ConfirmMultikey(const ButtonRecord& button, const LayoutPath& layout,
                                      size_t action, LayoutPath& path) {
  if (button.multikey_value_name == nullptr) return action;
  path = BelowLayout(layout, TEXT("\\MULTIKEYS"));
  UniqueRegistryKey key;
  if (OpenKeypadKey(path.data(), key) != ERROR_SUCCESS) return std::nullopt;
  decltype(button.multikey_data) data{};
  auto bytes = static_cast<DWORD>(data.size());
  const LONG error =
      RegQueryValueExW(key.get(), button.event_value_name, nullptr, nullptr, data.data(), &bytes);
  if (error != ERROR_SUCCESS || bytes != data.size() || data != button.multikey_data) {
    return std::nullopt;
  }
  return action;
}

std::optional<size_t> ReadAction(const ButtonRecord& button, const LayoutPath& layout,
                                 LayoutPath& path) {
  std::optional<size_t> action = ReadDelta(button, layout, path);
  if (action) action = ConfirmState(button, layout, *action, path);
  if (action) action = ConfirmMultikey(button, layout, *action, path);
  return action;
}

// An action that cannot be told is no failure.
HRESULT GetAction(const ButtonRecord& button, DWORD& action) {
  LayoutPath layout;
  const HRESULT result = ResolveButtonKeyPath(layout, button);
  LayoutPath path = layout;
  std::optional<size_t> found;
  if (Succeeded(result)) found = ReadAction(button, layout, path);
  if (found) {
    action = static_cast<DWORD>(*found) + 1;
  } else {
    kKeypadTrace.Error("%s error in HKLM\\%ls\r\n", kGetName, path.data());
  }
  return result;
}

struct Change {
  const ButtonRecord& button;
  const LayoutPath& layout;
  size_t action;
  DWORD current_action;  // as callers count
};

HRESULT WriteEvent(const Change& change, const EventKind& kind, HKEY key, const LayoutPath& path) {
  const ButtonRecord& button = change.button;
  const HRESULT result =
      SetupKeyForScanKeys(change.layout, button, change.current_action, kind.is_state);
  if (result != S_OK) return result;
  const WCHAR* const event_name = button.action_events[change.action].*kind.of_action;
  kKeypadTrace.Info("%s: \"%s\", %ls, %ls=%ls\r\n", kSetName, button.name, path.data(),
                    button.event_value_name, event_name);
  const LONG error = WriteEventName(key, button.event_value_name, event_name);
  if (error != ERROR_SUCCESS && kind.must_be_written) return HResultFromWin32(error);
  return SetupKeyForWinDefkeys(change.layout, button, change.action, kind.is_state);
}

bool WriteState(const Change& change) {
  LayoutPath path;
  UniqueRegistryKey key;
  if (!OpenEvents(kState, change.layout, path, key)) return false;
  EventName current;
  if (ReadEventName(change.button, key.get(), current)) {
    kKeypadTrace.Info("SetButtonAction()2 \"%s\", %ls=%ls\r\n", change.button.name,
                      change.button.event_value_name, current.data());
  }
  return WriteEvent(change, kState, key.get(), path) == S_OK;
}

bool WriteMultikey(const ButtonRecord& button, const LayoutPath& layout) {
  if (button.multikey_value_name == nullptr) return true;
  const LayoutPath path = BelowLayout(layout, TEXT("\\MULTIKEY"));
  UniqueRegistryKey key;
  return OpenKeypadKey(path.data(), key) == ERROR_SUCCESS &&
         RegSetValueExW(key.get(), button.multikey_value_name, 0, REG_BINARY,
                        button.multikey_data.data(),
                        static_cast<DWORD>(button.multikey_data.size())) == ERROR_SUCCESS;
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

// What is written before a failure stays.
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
  if (WriteEvent(change, kDelta, delta.get(), path) != S_OK) return E_FAIL;
  delta.Reset();
  const bool done = WriteState(change) && WriteMultikey(button, layout) && TellDriver(button);
  return done ? result : E_FAIL;
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALKEYGetButtonAction(LONG button, DWORD* action) {
  if (action == nullptr) return E_FAIL;
  pal::kKeypadTrace.Info("%s(%d,*)\r\n", pal::kGetName, button);
  DWORD found = PAL_KEY_ACTION_UNKNOWN;
  const HRESULT result = pal::ButtonIsSupported(button)
                             ? pal::GetAction(*pal::FindButton(button), found)
                             : PAL_KEY_E_NOT_SUPPORTED;
  *action = found;
  pal::kKeypadTrace.Info("0x%08X=%s(%d,*%d)\r\n", result, pal::kGetName, button, found);
  return result;
}

HRESULT PALAPI PALKEYSetButtonAction(LONG button, LONG action) {
  pal::kKeypadTrace.Info("%s(%d,%d)\r\n", pal::kSetName, button, action);
  HRESULT result = PAL_KEY_E_NOT_SUPPORTED;
  LONG shown = action;
  if (pal::ButtonIsSupported(button)) {
    result = PAL_KEY_E_NO_SUCH_ACTION;
    if (action >= PAL_KEY_ACTION_SCAN && action <= PAL_KEY_ACTION_OEM_TRIGGER) {
      shown = action - 1;
      result = pal::SetAction(*pal::FindButton(button), static_cast<size_t>(shown));
    }
  }
  pal::kKeypadTrace.Info("0x%08X=%s(%d,%d \"zero based adjusted\")\r\n", result, pal::kSetName,
                         button, shown);
  return result;
}
