#include <fmt/format.h>

#include "keypad/button_table.h"
#include "keypad/shift_plane.h"
#include "platform/sim/text.h"
#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/scene.h"
#include "tools/palsim/keypad_layout.h"

namespace palsim {
namespace {

// Plane 0 of the active layout has a record with the button's scan code, and can be read.
bool IsSupported(Scene& scene, LONG button) {
  constexpr std::size_t kMostBytes = 1024;
  const pal::ButtonRecord* const record = pal::FindButton(button);
  if (record == nullptr) return false;
  const sim::RegistryValue* plane = scene.registry().FindValue(
      ActiveLayout(scene.registry()), sim::ToUtf8(pal::kShiftPlanes.front()));
  if (plane == nullptr || plane->data.size() > kMostBytes) return false;
  std::span<const BYTE> rest(plane->data);
  for (; rest.size() >= pal::kKeyRecordBytes; rest = rest.subspan(pal::kKeyRecordBytes)) {
    if (pal::IsRecordOf(rest.first(pal::kKeyRecordBytes), pal::kMapsScanCode, record->scan_code)) {
      return true;
    }
  }
  return false;
}

class Buttons : public Property {
  void CallBegins(Scene& scene, const WatchedCall& call) override {
    if (call.name != kSetter) return;
    is_supported_ = IsSupported(scene, static_cast<LONG>(call.Number(0)));
  }

  void CallEnds(Scene& scene, const WatchedCall& call) override {
    if (call.name != kSetter || is_supported_ || !call.alone) return;
    Met();
    if (scene.writes() == call.writes_at_begin) return;
    Violated(fmt::format("{} writes for the button {}", call.name, call.arguments->at(0)));
  }

  static constexpr std::string_view kSetter = "PALKEYSetButtonAction";
  bool is_supported_ = true;
};

}  // namespace

std::unique_ptr<Property> UnsupportedButtonsStay() {
  return std::make_unique<Buttons>();
}

}  // namespace palsim
