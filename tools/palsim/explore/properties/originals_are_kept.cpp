#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>

#include "keypad/button_table.h"
#include "keypad/shift_plane.h"
#include "platform/sim/text.h"
#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/scene.h"
#include "tools/palsim/keypad_layout.h"

namespace palsim {
namespace {

using Record = std::vector<std::uint8_t>;
using Place = std::pair<std::string, DWORD>;  // a plane and a scan code
using Records = std::multimap<Place, Record>;

// The records of the ordinary keys in the three planes of a layout.
Records RecordsOf(Scene& scene, const std::string& layout) {
  Records records;
  for (const WCHAR* const name : pal::kShiftPlanes) {
    const auto* const plane = scene.registry().FindValue(layout, sim::ToUtf8(name));
    if (plane == nullptr) continue;
    std::span<const BYTE> rest(plane->data);
    for (; rest.size() >= pal::kKeyRecordBytes; rest = rest.subspan(pal::kKeyRecordBytes)) {
      const auto record = rest.first(pal::kKeyRecordBytes);
      for (const pal::ButtonRecord& button : pal::kButtonRecords) {
        if (!button.is_ordinary_key) continue;
        if (!pal::IsRecordOf(record, pal::kMapsScanCode, button.scan_code)) continue;
        records.emplace(Place(sim::ToUtf8(name), button.scan_code),
                        Record(record.begin(), record.end()));
      }
    }
  }
  return records;
}

class Originals : public Property {
  // What was saved before stays right, and so does what the layout has now and signals nothing.
  void DeviceChanged(Scene& scene) override {
    seen_ = scene.writes();
    originals_ = RecordsOf(scene, KeyPath(pal::kKeypadSettingsPath));
    for (const auto& [place, record] : RecordsOf(scene, ActiveLayout(scene.registry()))) {
      originals_.emplace(place, record);
    }
  }

  void StatementEnds(Scene& scene) override {
    if (scene.writes() == std::exchange(seen_, scene.writes())) return;
    // The library does not notice a write that fails, and the original is lost.
    const std::vector<std::string> faulted = scene.device().faulted_calls();
    if (std::ranges::count(faulted, "RegSetValueExW") != 0) return DeviceChanged(scene);
    for (const auto& [place, record] : RecordsOf(scene, KeyPath(pal::kKeypadSettingsPath))) {
      Met();
      const auto [begin, end] = originals_.equal_range(place);
      const bool is_original = std::any_of(
          begin, end, [&, &saved = record](const auto& known) { return known.second == saved; });
      if (is_original) continue;
      Violated(fmt::format("{}: the saved record of the scan code {:#x} is {:02x}", place.first,
                           place.second, fmt::join(record, " ")));
    }
  }

  Records originals_;
  std::uint64_t seen_ = 0;
};

}  // namespace

std::unique_ptr<Property> OriginalsAreKept() {
  return std::make_unique<Originals>();
}

}  // namespace palsim
