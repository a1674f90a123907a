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

ButtonEvents EventsOf(const sim::Registry& registry, const std::string& layout,
                      const std::string& value_name) {
  return {.delta = TextOf(registry, layout + "\\EVENTS\\DELTA", value_name),
          .state = TextOf(registry, layout + "\\EVENTS\\STATE", value_name)};
}

std::string Text(const ButtonEvents& events) {
  return fmt::format("{}, {}", events.delta, events.state);
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
  return Text(EventsOf(registry, layout, value_name));
}

bool SignalsEvent(std::span<const BYTE> record) {
  return record[pal::kKeyKind] == pal::kMapsScanCode &&
         record[pal::kKeyOutputClass] == pal::kSignalsEvent &&
         record[pal::kKeyOutputClass + 1] == pal::kSignalsEvent;
}

std::optional<ButtonEvents> FindEventsOfButton(const sim::Registry& registry, LONG button) {
  const pal::ButtonRecord* const description = pal::FindButton(button);
  if (description == nullptr) return std::nullopt;
  const std::string layout =
      description->value_name == nullptr ? KeyPath(description->key_path) : ActiveLayout(registry);
  if (layout.empty()) return std::nullopt;
  const sim::RegistryValue* plane =
      registry.FindValue(layout, sim::ToUtf8(pal::kShiftPlanes.front()));
  if (plane == nullptr) return std::nullopt;
  std::span<const BYTE> rest(plane->data);
  for (; rest.size() >= pal::kKeyRecordBytes; rest = rest.subspan(pal::kKeyRecordBytes)) {
    const auto record = rest.first(pal::kKeyRecordBytes);
    if (!pal::IsRecordOf(record, pal::kMapsScanCode, description->scan_code)) continue;
    if (!SignalsEvent(record)) return std::nullopt;
    return EventsOf(registry, layout, fmt::format("Event{}", int{record[pal::kKeyEvent]}));
  }
  return std::nullopt;
}

std::string EventsOfButton(const sim::Registry& registry, LONG button) {
  const std::optional<ButtonEvents> events = FindEventsOfButton(registry, button);
  return events ? Text(*events) : kNoEvents;
}

}  // namespace palsim
