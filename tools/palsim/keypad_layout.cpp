#include "tools/palsim/keypad_layout.h"

#include <fmt/format.h>

#include <algorithm>

#include "keypad/button_table.h"
#include "keypad/shift_plane.h"
#include "platform/sim/journal.h"
#include "platform/sim/text.h"

namespace palsim {
namespace {

constexpr const char* kNoText = "-";
constexpr const char* kNoEvents = "nothing";

// A text of the registry up to its end, if it has one.
std::string TextOf(const sim::Registry& registry, const std::string& path,
                   const std::string& name) {
  const sim::RegistryValue* value = registry.FindValue(path, name);
  if (value == nullptr) return kNoText;
  std::u16string units = sim::UnitsOf(value->data);
  units.resize(std::min(units.find(u'\0'), units.size()));
  return sim::Escape(sim::ToUtf8(units));
}

}  // namespace

std::string KeyPath(const WCHAR* path) {
  return "HKLM\\" + sim::ToUtf8(path);
}

std::string ActiveLayout(const sim::Registry& registry) {
  const std::string path =
      TextOf(registry, KeyPath(pal::kKeyboardPath), sim::ToUtf8(pal::kActiveLayoutValue));
  return path == kNoText ? "" : "HKLM\\" + path;
}

std::string EventsText(const sim::Registry& registry, const std::string& layout,
                       const std::string& value_name) {
  return fmt::format("{}, {}", TextOf(registry, layout + "\\EVENTS\\DELTA", value_name),
                     TextOf(registry, layout + "\\EVENTS\\STATE", value_name));
}

bool SignalsEvent(std::span<const BYTE> record) {
  return record[pal::kKeyKind] == pal::kMapsScanCode &&
         record[pal::kKeyOutputClass] == pal::kSignalsEvent &&
         record[pal::kKeyOutputClass + 1] == pal::kSignalsEvent;
}

std::string EventsOfButton(const sim::Registry& registry, LONG button) {
  const pal::ButtonRecord* const description = pal::FindButton(button);
  if (description == nullptr) return kNoEvents;
  const std::string layout =
      description->value_name == nullptr ? KeyPath(description->key_path) : ActiveLayout(registry);
  if (layout.empty()) return kNoEvents;
  const sim::RegistryValue* plane =
      registry.FindValue(layout, sim::ToUtf8(pal::kShiftPlanes.front()));
  if (plane == nullptr) return kNoEvents;
  std::span<const BYTE> rest(plane->data);
  for (; rest.size() >= pal::kKeyRecordBytes; rest = rest.subspan(pal::kKeyRecordBytes)) {
    const auto record = rest.first(pal::kKeyRecordBytes);
    if (!pal::IsRecordOf(record, pal::kMapsScanCode, description->scan_code)) continue;
    if (!SignalsEvent(record)) return kNoEvents;
    return EventsText(registry, layout, fmt::format("Event{}", int{record[pal::kKeyEvent]}));
  }
  return kNoEvents;
}

}  // namespace palsim
