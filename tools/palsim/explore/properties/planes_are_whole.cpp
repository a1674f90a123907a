#include <fmt/format.h>

#include <array>

#include "keypad/button_table.h"
#include "keypad/shift_plane.h"
#include "platform/sim/text.h"
#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/scene.h"
#include "tools/palsim/keypad_layout.h"

namespace palsim {
namespace {

class Whole : public Property {
  void DeviceChanged(Scene& scene) override {
    folders_ = {ActiveLayout(scene.registry()), KeyPath(pal::kButtonRecords.front().key_path),
                KeyPath(pal::kKeypadSettingsPath)};
    seen_ = scene.writes();
    sizes_ = Sizes(scene);
  }

  void StatementEnds(Scene& scene) override {
    if (scene.writes() == std::exchange(seen_, scene.writes())) return;
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
      for (const WCHAR* const plane : pal::kShiftPlanes) {
        const auto* const value = scene.registry().FindValue(folder, sim::ToUtf8(plane));
        sizes.push_back(value == nullptr ? 0 : value->data.size());
      }
    }
    return sizes;
  }

  std::array<std::string, 3> folders_;
  std::vector<std::size_t> sizes_;
  std::uint64_t seen_ = 0;
};

}  // namespace

std::unique_ptr<Property> PlanesAreWhole() {
  return std::make_unique<Whole>();
}

}  // namespace palsim
