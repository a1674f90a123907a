// The keypad: what the library says of the buttons, and what the driver reads in the shift planes.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <span>

#include "keypad/button_table.h"
#include "keypad/shift_plane.h"
#include "platform/sim/exports.h"
#include "platform/sim/text.h"
#include "tools/palsim/commands.h"
#include "tools/palsim/keypad_layout.h"
#include "tools/palsim/names.h"
#include "tools/palsim/session.h"

namespace palsim {
namespace {

constexpr std::array<std::string_view, pal::kActionCount> kActionNames = {
    "scan",       "RFID trigger",    "RFID reader event", "camera scan",
    "flashlight", "Windows default", "OEM trigger event",
};

std::string ActionText(DWORD action) {
  if (action - 1 >= kActionNames.size()) return fmt::format("{} unknown", action);
  return fmt::format("{} {}", action, kActionNames.at(action - 1));
}

void ShowButton(Session& session, LONG button) {
  const sim::Exports& exports = session.process().exports();
  char name[PAL_KEY_BUTTON_NAME_LENGTH] = {};
  DWORD length = 0;
  DWORD action = 0;
  HRESULT result = exports.PALKEYGetButtonName(button, name, &length);
  if (result >= 0) result = exports.PALKEYGetButtonAction(button, &action);
  const pal::ButtonRecord* const record = pal::FindButton(button);
  if (result < 0) {
    fmt::print("{:>3}  {:<18} {}\n", button, record == nullptr ? "-" : record->name,
               result == PAL_KEY_E_NOT_SUPPORTED ? "not supported" : ResultText(result));
    return;
  }
  const sim::Registry& registry = session.device().registry();
  const std::string layout =
      record->value_name == nullptr ? KeyPath(record->key_path) : ActiveLayout(registry);
  fmt::print("{:>3}  {:<18} {:<20} {}\n", button, name, ActionText(action),
             EventsText(registry, layout, sim::ToUtf8(record->event_value_name)));
}

std::string ScanCodeName(BYTE scan_code) {
  for (const pal::ButtonRecord& button : pal::kButtonRecords) {
    if (button.scan_code == scan_code) return button.name;
  }
  return {};
}

void ShowRecord(const sim::Registry& registry, const std::string& layout, std::size_t offset,
                std::span<const BYTE> record) {
  const bool maps = record[pal::kKeyKind] == pal::kMapsScanCode;
  std::string meaning;
  if (SignalsEvent(record)) {
    const int event = record[pal::kKeyEvent];
    meaning = fmt::format("event {}: {}", event,
                          EventsText(registry, layout, fmt::format("Event{}", event)));
  } else {
    meaning = maps ? "ordinary" : fmt::format("kind {}", record[pal::kKeyKind]);
  }
  fmt::print("{:>6}  {:02x}  {:<18} {}\n", offset, fmt::join(record, " "),
             maps ? ScanCodeName(record[pal::kKeyScanCode]) : "", meaning);
}

void ShowPlane(const sim::Registry& registry, const std::string& path, const std::string& plane,
               const std::string& layout) {
  const sim::RegistryValue* value = registry.FindValue(path, plane);
  if (value == nullptr) {
    fmt::print("\n{} of {}: none\n", plane, path);
    return;
  }
  const std::span<const BYTE> bytes(value->data);
  fmt::print("\n{} of {}: {} bytes\n", plane, path, bytes.size());
  std::size_t offset = 0;
  for (; bytes.size() - offset >= pal::kKeyRecordBytes; offset += pal::kKeyRecordBytes) {
    ShowRecord(registry, layout, offset, bytes.subspan(offset, pal::kKeyRecordBytes));
  }
  if (offset != bytes.size()) {
    fmt::print("{:>6}  {:02x}  no record\n", offset, fmt::join(bytes.subspan(offset), " "));
  }
}

}  // namespace

int ShowKeys(Session& session) {
  const sim::Registry& registry = session.device().registry();
  static_cast<void>(session.process());  // an attach may repair the layout
  const std::string layout = ActiveLayout(registry);
  fmt::print("Buttons of {}\n", layout.empty() ? "a device without active layout" : layout);
  for (LONG button = 0; button < PAL_KEY_BUTTON_COUNT; ++button) ShowButton(session, button);
  for (const WCHAR* const plane : pal::kShiftPlanes) {
    if (!layout.empty()) ShowPlane(registry, layout, sim::ToUtf8(plane), layout);
  }
  const std::string settings = KeyPath(pal::kKeypadSettingsPath);
  for (const WCHAR* const plane : pal::kShiftPlanes) {
    // Records that the library has saved to restore them one day.
    if (registry.FindValue(settings, sim::ToUtf8(plane)) == nullptr) continue;
    ShowPlane(registry, settings, sim::ToUtf8(plane), layout);
  }
  return kSuccess;
}

}  // namespace palsim
