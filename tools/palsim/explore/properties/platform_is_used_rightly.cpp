// The simulated platform keeps a list of what its programs do wrong.
#include <algorithm>
#include <array>

#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/scene.h"

namespace palsim {
namespace {

// The first has a property of its own. The second is left open by a program that ends without
// PALSysio_Close, which is the program's mistake.
constexpr std::array<std::string_view, 2> kOthers{"for ever", "left open at the end: driver"};

class UsedRightly : public Property {
  void StatementEnds(Scene& scene) override {
    Met();
    for (const std::string& misuse : scene.device().misuse()) {
      const auto is_in = [&](std::string_view text) { return misuse.find(text) != std::string::npos; };
      if (std::ranges::none_of(kOthers, is_in)) Violated(misuse);
    }
  }
};

}  // namespace

std::unique_ptr<Property> PlatformIsUsedRightly() {
  return std::make_unique<UsedRightly>();
}

}  // namespace palsim
