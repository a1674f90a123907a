// The records of the keypad's keys: whole ones, with originals that are the factory's.
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <map>
#include <set>

#include "keypad/button_table.h"
#include "keypad/shift_plane.h"
#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/scene.h"
#include "tools/palsim/keypad_layout.h"

namespace palsim {
namespace {

// The shift planes of a folder; nullptr for one that it does not have.
std::array<const sim::RegistryValue*, pal::kShiftPlanes.size()> PlanesOf(
    Scene& scene, const std::string& folder) {
  std::array<const sim::RegistryValue*, pal::kShiftPlanes.size()> planes{};
  const std::shared_ptr<sim::RegistryKey> key = scene.registry().Find(folder);
  if (key == nullptr) return planes;
  std::ranges::transform(pal::kShiftPlanes, planes.begin(),
                         [&](const WCHAR* name) { return key->FindValue(name); });
  return planes;
}

class PlanesAreWhole : public Property {
  void DeviceChanged(Scene& scene) override {
    folders_ = {ActiveLayout(scene.registry()), KeyPath(pal::kButtonRecords.front().key_path),
                KeyPath(pal::kKeypadSettingsPath)};
    sizes_ = Sizes(scene);
  }

  void RegistryChanged(Scene& scene) override {
    const std::vector<std::size_t> sizes = Sizes(scene);
    for (std::size_t at = 0; at < sizes.size(); ++at) {
      if (sizes_[at] % pal::kKeyRecordBytes != 0) continue;
      Met();
      if (sizes[at] % pal::kKeyRecordBytes == 0) continue;
      Violated(fmt::format("a plane of {} bytes has {} now", sizes_[at], sizes[at]));
    }
    sizes_ = sizes;
  }

  // One that does not exist has no records.
  std::vector<std::size_t> Sizes(Scene& scene) {
    std::vector<std::size_t> sizes;
    for (const std::string& folder : folders_) {
      for (const sim::RegistryValue* const plane : PlanesOf(scene, folder)) {
        sizes.push_back(plane == nullptr ? 0 : plane->data.size());
      }
    }
    return sizes;
  }

  std::array<std::string, 3> folders_;
  std::vector<std::size_t> sizes_;
};

using Record = std::vector<std::uint8_t>;
using RecordPlace = std::pair<std::size_t, DWORD>;  // a plane and a scan code
using Records = std::map<RecordPlace, std::set<Record>>;

// The records of the ordinary keys in the three planes of a layout.
Records RecordsOf(Scene& scene, const std::string& layout) {
  Records records;
  const auto planes = PlanesOf(scene, layout);
  for (std::size_t at = 0; at < planes.size(); ++at) {
    if (planes[at] == nullptr) continue;
    std::span<const BYTE> rest(planes[at]->data);
    for (; rest.size() >= pal::kKeyRecordBytes; rest = rest.subspan(pal::kKeyRecordBytes)) {
      const auto record = rest.first(pal::kKeyRecordBytes);
      for (const pal::ButtonRecord& button : pal::kButtonRecords) {
        if (!button.is_ordinary_key) continue;
        if (!pal::IsRecordOf(record, pal::kMapsScanCode, button.scan_code)) continue;
        records[{at, button.scan_code}].emplace(record.begin(), record.end());
      }
    }
  }
  return records;
}

// What the library puts in the place of an original.
bool IsRewritten(const Record& record) {
  return SignalsEvent(record) &&
         std::ranges::any_of(pal::kButtonRecords, [&](const pal::ButtonRecord& button) {
           return button.is_ordinary_key && record[pal::kKeyEvent] == button.id &&
                  pal::IsRecordOf(record, pal::kMapsScanCode, button.scan_code);
         });
}

class OriginalsAreKept : public Property {
  // What was saved before stays right. So does what the layout has now, but for what was rewritten
  // after its original was saved. A call under way may still use the layout that it has found.
  void DeviceChanged(Scene& scene) override {
    if (scene.running == 0) originals_.clear();
    const Records saved = RecordsOf(scene, KeyPath(pal::kKeypadSettingsPath));
    for (const auto& [place, records] : saved) {
      originals_[place].insert(records.begin(), records.end());
    }
    for (const auto& [place, records] : RecordsOf(scene, ActiveLayout(scene.registry()))) {
      for (const Record& record : records) {
        if (!saved.contains(place) || !IsRewritten(record)) originals_[place].insert(record);
      }
    }
  }

  // The library does not notice a write that fails: a record that was not saved is rewritten, and
  // its original is lost.
  void CallEnds(Scene& scene, const WatchedCall& call) override {
    if (std::ranges::count(scene.FailedIn(call), sim::CallId::RegSetValueExW) == 0) return;
    const Records saved = RecordsOf(scene, KeyPath(pal::kKeypadSettingsPath));
    for (const auto& [place, records] : RecordsOf(scene, ActiveLayout(scene.registry()))) {
      if (!saved.contains(place)) originals_[place].insert(records.begin(), records.end());
    }
  }

  void RegistryChanged(Scene& scene) override {
    for (const auto& [place, records] : RecordsOf(scene, KeyPath(pal::kKeypadSettingsPath))) {
      for (const Record& record : records) {
        Met();
        if (originals_[place].contains(record)) continue;
        Violated(fmt::format("plane {}: the saved record of the scan code {:#x} is {:02x}",
                             place.first, place.second, fmt::join(record, " ")));
      }
    }
  }

  Records originals_;
};

// Plane 0 of the active layout has a record with the button's scan code, and can be read.
bool IsSupported(Scene& scene, LONG button) {
  constexpr std::size_t kMostBytes = 1024;
  const pal::ButtonRecord* const record = pal::FindButton(button);
  if (record == nullptr) return false;
  const sim::RegistryValue* plane = PlanesOf(scene, ActiveLayout(scene.registry())).front();
  if (plane == nullptr || plane->data.size() > kMostBytes) return false;
  std::span<const BYTE> rest(plane->data);
  for (; rest.size() >= pal::kKeyRecordBytes; rest = rest.subspan(pal::kKeyRecordBytes)) {
    if (pal::IsRecordOf(rest.first(pal::kKeyRecordBytes), pal::kMapsScanCode, record->scan_code)) {
      return true;
    }
  }
  return false;
}

class UnsupportedButtonsStay : public Property {
  void CallBegins(Scene& scene, const WatchedCall& call) override {
    if (call.name != kSetter) return;
    is_supported_ = IsSupported(scene, static_cast<LONG>(call.Number(0)));
  }

  void CallEnds(Scene& scene, const WatchedCall& call) override {
    if (call.name != kSetter || is_supported_ || !call.alone) return;
    Met();
    if (scene.Writes() == call.writes_at_begin) return;
    Violated(fmt::format("{} writes for the button {}", call.name, call.arguments->at(0)));
  }

  static constexpr std::string_view kSetter = "PALKEYSetButtonAction";
  bool is_supported_ = true;
};

constexpr std::array kKeypadRows{
    PropertyRow{"planes-are-whole", "A shift plane of whole records stays one.",
                &Make<PlanesAreWhole>},
    PropertyRow{"originals-are-kept", "Every saved record of a button is the factory's.",
                &Make<OriginalsAreKept>},
    PropertyRow{"unsupported-buttons-stay",
                "Nothing is written for a button that is not supported, whatever fails.",
                &Make<UnsupportedButtonsStay>},
};

}  // namespace

std::span<const PropertyRow> KeypadProperties() {
  return kKeypadRows;
}

}  // namespace palsim
