#include "keypad/ordinary_key.h"

#include "frame/result.h"
#include "frame/trace.h"

namespace pal {
namespace {

constexpr NoValuesLines kNotSaved = {
    "SetupKeyForScanKeys: Did not get Values for %s button in shift plane 0\r\n",
    "SetupKeyForScanKeys: Did not get Values for %s button in shift plane 1\r\n",
    "SetupKeyForScanKeys: Did not get Values for %s button in shift plane 2\r\n",
};
constexpr NoValuesLines kNotRestored = {
    "SetupKeyForWinDefkeys: Did not get Values for %s button in shift plane 0\r\n",
    "SetupKeyForWinDefkeys: Did not get Values for %s button in shift plane 1\r\n",
    "SetupKeyForWinDefkeys: Did not get Values for %s button in shift plane 2\r\n",
};

// Tells whether the button's original record may be saved already: also where that cannot be read.
bool MayBeSaved(const WCHAR* plane_name, const ButtonRecord& button) {
  BYTE plane[kMaxPlaneBytes];
  const PlaneReading reading = ReadShiftPlane(kKeypadSettingsPath, plane_name, plane);
  return Failed(reading.read) ||
         AnyKeyRecord(std::span(plane).first(reading.bytes),
                      [&button](DWORD, std::span<BYTE> found) {
                        return IsRecordOf(found, kMapsScanCode, button.scan_code);
                      });
}

// `result` is that of the last write; it is unchanged where nothing is written.
void SaveAndSignalEvent(const WCHAR* layout, size_t plane, const ButtonRecord& button,
                        HRESULT& result) {
  std::optional<KeyRecord> record;
  static_cast<void>(ReadKeyRecord(kNotSaved, layout, plane, button, record));
  if (!record) return;
  const WCHAR* const plane_name = kShiftPlanes[plane];
  // An earlier call may have ended before it wrote the button's events. Its record is not the
  // original, which must not be saved over.
  if (SignalsEvent(button.event_value_name, *record) && MayBeSaved(plane_name, button)) return;
  result = SetKeyValues(kKeypadSettingsPath, plane_name, button, *record, E_FAIL);
  if (Failed(result)) return;  // a record that cannot be saved stays in place
  ModifyKeyDataForEventTrigger(button.event_value_name, *record);
  result = SetKeyValues(layout, plane_name, button, *record);
}

HRESULT Restore(const WCHAR* layout, size_t plane, const ButtonRecord& button) {
  std::optional<KeyRecord> record;
  static_cast<void>(ReadKeyRecord(kNotRestored, kKeypadSettingsPath, plane, button, record));
  if (!record) return S_OK;
  return SetKeyValues(layout, kShiftPlanes[plane], button, *record);
}

}  // namespace

HRESULT ReadKeyRecord(const NoValuesLines& no_values, const WCHAR* layout, size_t plane,
                      const ButtonRecord& button, std::optional<KeyRecord>& record) {
  KeyRecord read{};
  const HRESULT result = GetKeyValues(layout, kShiftPlanes[plane], button, read);
  // A record that was found has a kind.
  if (Succeeded(result) && read != KeyRecord{}) {
    record = read;
  } else {
    kKeypadTrace.Error(no_values[plane], button.name);
  }
  return result;
}

std::optional<size_t> GetActionForDefaultWindowsKeys(const ButtonRecord& button) {
  kKeypadTrace.Info("GetActionForDefaultWindowsKeys Enter hr=0x%x\r\n", S_OK);
  std::optional<size_t> action;
  if (button.is_ordinary_key) action = kWindowsDefault;
  kKeypadTrace.Info("GetActionForDefaultWindowsKeys Complete (eAction-1)=%u\r\n",
                    static_cast<DWORD>(action.value_or(PAL_KEY_ACTION_UNKNOWN)));
  return action;
}

HRESULT SetupKeyForScanKeys(const LayoutPath& layout, const ButtonRecord& button,
                            DWORD current_action, bool is_state) {
  kKeypadTrace.Info("SetupKeyForScanKeys Enter\r\n");
  HRESULT result = S_OK;
  if (button.is_ordinary_key && current_action == PAL_KEY_ACTION_WINDOWS_DEFAULT && !is_state) {
    for (size_t plane = 0; plane < kShiftPlanes.size(); ++plane) {
      SaveAndSignalEvent(layout.data(), plane, button, result);
    }
  }
  kKeypadTrace.Info("SetupKeyForScanKeys Complete hr=0x%x\r\n", result);
  return result;
}

HRESULT SetupKeyForWinDefkeys(const LayoutPath& layout, const ButtonRecord& button, size_t action,
                              bool is_state) {
  HRESULT result = S_OK;
  if (button.is_ordinary_key && action == kWindowsDefault && !is_state) {
    for (size_t plane = 0; plane < kShiftPlanes.size(); ++plane) {
      result = Restore(layout.data(), plane, button);
    }
  }
  return result;
}

}  // namespace pal
