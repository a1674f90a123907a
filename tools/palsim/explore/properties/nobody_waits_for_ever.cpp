#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/scene.h"

namespace palsim {
namespace {

class NoDeadlock : public Property {
  void CallEnds(Scene& /*scene*/, const WatchedCall& call) override {
    if (!call.alone) Met();  // another one might have made it wait
  }
  void StatementEnds(Scene& scene) override {
    for (const std::string& misuse : scene.device().misuse()) {
      if (misuse.find("for ever") != std::string::npos) Violated(misuse);
    }
  }
};

}  // namespace

std::unique_ptr<Property> NobodyWaitsForEver() {
  return std::make_unique<NoDeadlock>();
}

}  // namespace palsim
