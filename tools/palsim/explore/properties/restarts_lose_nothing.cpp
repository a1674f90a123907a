#include <fmt/format.h>

#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/scene.h"

namespace palsim {
namespace {

class LoseNothing : public Property {
  void CallBegins(Scene& scene, const WatchedCall& call) override {
    if (call.name != kRestart) return;
    RestartBegins(scene);
    is_kept_ = call.alone;
  }
  void CallEnds(Scene& /*scene*/, const WatchedCall& call) override {
    if (call.name == kRestart && !call.alone) is_kept_ = false;
  }
  void RestartBegins(Scene& scene) override {
    before_ = StoredOn(scene.device());
    restarts_ = scene.device().restarts().size();
    is_kept_ = scene.running() == 0;
  }

  void StatementEnds(Scene& scene) override {
    if (!is_kept_) return;
    is_kept_ = false;
    if (scene.device().restarts().size() == restarts_) return;
    Met();
    const Stored after = StoredOn(scene.device());
    for (const auto& [where, what] : before_) {
      const auto found = after.find(where);
      if (found == after.end() || found->second != what) Violated(where + " is lost");
    }
  }

  static constexpr std::string_view kRestart = "PALBOOT_BootTerminal";
  Stored before_;
  std::size_t restarts_ = 0;
  bool is_kept_ = false;
};

}  // namespace

std::unique_ptr<Property> RestartsLoseNothing() {
  return std::make_unique<LoseNothing>();
}

}  // namespace palsim
