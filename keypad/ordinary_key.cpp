#include "keypad/ordinary_key.h"

#include "frame/result.h"
#include "keypad/keypad_trace.h"

namespace pal {
namespace {

using NoValuesFormat = TraceSource::Format<const char*, const char*>;

constexpr std::array<NoValuesFormat, kShiftPlanes.size()> kNoValues = {
    "%s: Did not get Values for %s button in shift plane 0\r\n",
    "%s: Did not get Values for %s button in shift plane 1\r\n",
    "%s: Did not get Values for %s button in shift plane 2\r\n",
};

// What a button's record was before is saved already.
// S_OK        whether it is; PAL_E_WIN32(error)  the saved records cannot be read
HRESULT IsSaved(const WCHAR* plane_name, const ButtonRecord& button, bool& is_saved) {
  BYTE plane[kMaxPlaneBytes];
  const PlaneReading reading = ReadShiftPlane(kKeypadSettingsPath, plane_name, plane);
  is_saved =
      AnyKeyRecord(std::span(plane).first(reading.bytes), [&button](DWORD, std::span<BYTE> found) {
        return IsRecordOf(found, kMapsScanCode, button.scan_code);
      });
  return reading.read;
}

HRESULT SaveAndSignalEvent(const char* function, const WCHAR* layout, size_t plane,
                           const ButtonRecord& button) {
  std::optional<KeyRecord> record;
  HRESULT result = ReadKeyRecord(function, layout, plane, button, record);
  if (!record) return result;
  const WCHAR* const plane_name = kShiftPlanes[plane];
  if (SignalsEvent(button.event_value_name, *record)) {
    // Left so by a call that ended before it could write the button's events: the next one must not
    // take it for the original.
    bool is_saved = false;
    result = IsSaved(plane_name, button, is_saved);
    if (Failed(result) || is_saved) return result;
  }
  // What cannot be saved is not given up.
  result = SetKeyValues(kKeypadSettingsPath, plane_name, button, *record, E_FAIL);
  if (Failed(result)) return result;
  ModifyKeyDataForEventTrigger(button.event_value_name, *record);
  return SetKeyValues(layout, plane_name, button, *record);
}

HRESULT Restore(const char* function, const WCHAR* layout, size_t plane,
                const ButtonRecord& button) {
  std::optional<KeyRecord> record;
  static_cast<void>(ReadKeyRecord(function, kKeypadSettingsPath, plane, button, record));
  if (!record) return S_OK;  // nothing was saved, and nothing is to be done
  return SetKeyValues(layout, kShiftPlanes[plane], button, *record);
}

}  // namespace

HRESULT ReadKeyRecord(const char* function, const WCHAR* layout, size_t plane,
                      const ButtonRecord& button, std::optional<KeyRecord>& record) {
  KeyRecord read{};
  const HRESULT result = GetKeyValues(layout, kShiftPlanes[plane], button, read);
  // A record that was found has a kind.
  if (Succeeded(result) && read != KeyRecord{}) {
    record = read;
  } else {
    kKeypadTrace.Error(kNoValues[plane], function, button.name);
  }
  return result;
}

std::optional<size_t> GetActionForDefaultWindowsKeys(const ButtonRecord& button) {
  constexpr const char* kName = "GetActionForDefaultWindowsKeys";
  kKeypadTrace.Info("%s Enter hr=0x%x\r\n", kName, S_OK);
  std::optional<size_t> action;
  if (button.is_ordinary_key) action = kWindowsDefault;
  kKeypadTrace.Info("%s Complete (eAction-1)=%u\r\n", kName,
                    static_cast<DWORD>(action.value_or(PAL_KEY_ACTION_UNKNOWN)));
  return action;
}

HRESULT SetupKeyForScanKeys(const LayoutPath& layout, const ButtonRecord& button,
                            DWORD current_action, bool is_state) {
  constexpr const char* kName = "SetupKeyForScanKeys";
  kKeypadTrace.Info("%s Enter\r\n", kName);
  HRESULT result = S_OK;
  if (button.is_ordinary_key && current_action == PAL_KEY_ACTION_WINDOWS_DEFAULT && !is_state) {
    for (size_t plane = 0; plane < kShiftPlanes.size(); ++plane) {
      result = SaveAndSignalEvent(kName, layout.data(), plane, button);
    }
  }
  kKeypadTrace.Info("%s Complete hr=0x%x\r\n", kName, result);
  return result;
}

HRESULT SetupKeyForWinDefkeys(const LayoutPath& layout, const ButtonRecord& button, size_t action,
                              bool is_state) {
  constexpr const char* kName = "SetupKeyForWinDefkeys";
  HRESULT result = S_OK;
  if (button.is_ordinary_key && action == kWindowsDefault && !is_state) {
    for (size_t plane = 0; plane < kShiftPlanes.size(); ++plane) {
      result = Restore(kName, layout.data(), plane, button);
    }
  }
  return result;
}

}  // namespace pal
