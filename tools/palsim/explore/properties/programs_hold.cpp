#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/scene.h"

namespace palsim {
namespace {

class Hold : public Property {
  void DeviceChanged(Scene& scene) override {
    if (scene.programs() > 0) Met();
  }
  void StatementEnds(Scene& scene) override {
    for (const std::string& misuse : scene.device().misuse()) {
      if (misuse.find("does not hold: ") != std::string::npos) Violated(misuse);
    }
  }
};

}  // namespace

std::unique_ptr<Property> ProgramsHold() {
  return std::make_unique<Hold>();
}

}  // namespace palsim
