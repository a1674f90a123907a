// The simulated platform keeps a list of what its programs do wrong.
#include <algorithm>
#include <array>

#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/scene.h"

namespace palsim {
namespace {

// These have properties of their own.
constexpr std::array<std::string_view, 2> kOthers{"for ever", "does not hold: "};

// A process that ends without PALSysio_Close leaves the driver open. That is its own mistake, and
// counts for a program of one's own alone.
constexpr std::string_view kProgram = "program.exe: ";

class UsedRightly : public Property {
  void StatementEnds(Scene& scene) override {
    Met();
    for (const std::string& misuse : scene.device().misuse()) {
      const auto is_in = [&](std::string_view text) {
        return misuse.find(text) != std::string::npos;
      };
      const bool is_of_caller = is_in("left open at the end: driver") && !is_in(kProgram);
      if (std::ranges::none_of(kOthers, is_in) && !is_of_caller) Violated(misuse);
    }
  }
};

}  // namespace

std::unique_ptr<Property> PlatformIsUsedRightly() {
  return std::make_unique<UsedRightly>();
}

}  // namespace palsim
