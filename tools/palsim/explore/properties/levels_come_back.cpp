#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "platform/sim/hardware/hardware.h"
#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/scene.h"

namespace palsim {
namespace {

// A tag search keeps its levels until it is stopped.
constexpr std::array<std::string_view, 5> kBeeps{"PALBEEPGoodReadEx", "PALBEEPBadRead",
                                                 "PALBEEPChangeConfig", "PALBEEPChangeConfigError",
                                                 "PALBEEPKeyClick"};

class Levels : public Property {
  void CallBegins(Scene& scene, const WatchedCall& call) override {
    if (call.alone && IsBeep(call)) before_ = scene.device().hardware().audio.levels;
  }

  void CallEnds(Scene& scene, const WatchedCall& call) override {
    if (!call.returned() || !call.undisturbed() || !IsBeep(call)) return;
    Met();
    const sim::AudioLevels& after = scene.device().hardware().audio.levels;
    if (after == before_) return;
    Violated(fmt::format("{} found volume {:#010x} and gain {}, and leaves {:#010x} and {}",
                         call.name, before_.volume, before_.gain, after.volume, after.gain));
  }

  static bool IsBeep(const WatchedCall& call) { return std::ranges::count(kBeeps, call.name) != 0; }

  sim::AudioLevels before_;
};

}  // namespace

std::unique_ptr<Property> LevelsComeBack() {
  return std::make_unique<Levels>();
}

}  // namespace palsim
